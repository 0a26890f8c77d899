// One connection of the program, and what is answered there. All that it holds ends with it.

import Gio from 'gi://Gio';
import GLib from 'gi://GLib';

import {pictureOfScreen, pictureOfWindow} from './pictures.js';

// A program that asks and never reads is let go before it fills the shell's memory.
const mostWaitingBytes = 64 * 1024 * 1024;

export class Client {
    constructor(connection, shell, ended) {
        this._connection = connection;
        this._shell = shell;
        this._ended = ended;
        this._cancellable = new Gio.Cancellable();
        this._waiting = [];
        this._waitingBytes = 0;
        this._tell({event: 'welcome'});
        this._tellFront = () => this._tell({event: 'front', window: this._front()});
        this._tellGone = window => this._tell({event: 'gone', window});
        this._shell.windows.watch(this._tellFront, this._tellGone);
        this._tellFront();
        this._read();
    }

    close() {
        if (!this._connection)
            return;
        this._cancellable.cancel();
        this._shell.windows.unwatch(this._tellFront);
        this._shell.hotkeys.letGoOf(this);
        this._shell.poster.giveBack();
        this._connection.close_async(GLib.PRIORITY_DEFAULT, null, null);
        this._connection = null;
        this._ended();
    }

    pressed(name) {
        this._tell({event: 'pressed', name});
    }

    _front() {
        return this._shell.windows.front();
    }

    async _read() {
        const lines = new Gio.DataInputStream({base_stream: this._connection.get_input_stream()});
        try {
            for (;;) {
                const [line] = await lines.read_line_async(GLib.PRIORITY_DEFAULT, this._cancellable);
                if (line === null)
                    break;
                this._answer(new TextDecoder().decode(line));
            }
        } catch (error) {
            if (!error.matches?.(Gio.IOErrorEnum, Gio.IOErrorEnum.CANCELLED))
                logError(error);
        }
        this.close();
    }

    _answer(line) {
        const {id, ask, ...rest} = JSON.parse(line);
        const done = answer => this._tell({id, ...answer});
        try {
            const answer = this._do(ask, rest);
            if (answer instanceof Promise)
                answer.then(done, error => done({error: `${error}`}));
            else
                done(answer ?? {});
        } catch (error) {
            done({error: `${error}`});
        }
    }

    _isLocked() {
        return this._shell.Main.sessionMode.isLocked;
    }

    _do(ask, rest) {
        const {windows, hotkeys, poster} = this._shell;
        if (this._isLocked() && !['hotkeys', 'back', 'keyboard'].includes(ask))
            throw new Error('the screen is locked');
        switch (ask) {
        case 'hotkeys':
            return {taken: hotkeys.hold(this, rest.wanted)};
        case 'free':
            return {taken: rest.accelerators.filter(each => !hotkeys.isFree(each))};
        case 'press':
            return poster.press(rest.modifiers, rest.codes);
        case 'aside':
            return poster.putAside();
        case 'back':
            return poster.giveBack();
        case 'keyboard':
            return poster.state();
        case 'activate':
            return {isDone: windows.activate(rest.window, this._shell.Main)};
        case 'windows':
            return {windows: windows.all()};
        case 'displays':
            return {displays: windows.displays()};
        case 'picture':
            return rest.window === undefined ? pictureOfScreen(rest.display) : pictureOfWindow(windows.find(rest.window));
        default:
            throw new Error(`nobody knows '${ask}'`);
        }
    }

    _tell(message) {
        if (!this._connection)
            return;
        const bytes = new TextEncoder().encode(`${JSON.stringify(message)}\n`);
        this._waitingBytes += bytes.length;
        if (this._waitingBytes > mostWaitingBytes) {
            this.close();
            return;
        }
        this._waiting.push(new GLib.Bytes(bytes));
        if (this._waiting.length === 1)
            this._write();
    }

    // One piece after the other; a stream takes no second before the first is through.
    _write() {
        const stream = this._connection.get_output_stream();
        stream.write_bytes_async(this._waiting[0], GLib.PRIORITY_DEFAULT, this._cancellable, (_stream, result) => {
            try {
                const written = stream.write_bytes_finish(result);
                const piece = this._waiting[0];
                const rest = piece.get_size() - written;
                this._waitingBytes -= written;
                if (rest > 0)
                    this._waiting[0] = piece.new_from_bytes(written, rest);
                else
                    this._waiting.shift();
            } catch {
                this.close();
            }
            if (this._connection && this._waiting.length > 0)
                this._write();
        });
    }
}
