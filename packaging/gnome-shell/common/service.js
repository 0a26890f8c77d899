// Listens in the user's runtime folder and serves the program whose path stands in the file `program` beside this one.
//
// Both sides speak in lines of JSON. A question has an `id`, which its answer repeats, and what is asked stands under
// `ask`. What is told without a question has `event`.

import Gio from 'gi://Gio';
import GLib from 'gi://GLib';

import {Client} from './client.js';
import {HotkeyTable} from './hotkeys.js';
import {Poster} from './poster.js';
import {Windows} from './windows.js';

Gio._promisify(Gio.DataInputStream.prototype, 'read_line_async');

const socketName = 'tavrelon-gnome-shell';

// Which file a path leads to, whatever names it has and in whose view of the files it was found.
function fileAt(path) {
    try {
        return Gio.File.new_for_path(path).query_info('id::file', Gio.FileQueryInfoFlags.NONE, null)
            .get_attribute_string('id::file');
    } catch {
        return null;
    }
}

export class Service {
    constructor(folder, Main, KeyboardManager) {
        this._folder = folder;
        this._clients = new Set();
        this._shell = {
            Main,
            windows: new Windows(),
            poster: new Poster(Main, KeyboardManager),
        };
        this._shell.hotkeys = new HotkeyTable(Main, this._shell.poster);
        this._listen();
    }

    close() {
        this._listener.stop();
        this._listener.close();
        GLib.unlink(this._path);
        for (const client of [...this._clients])
            client.close();
        this._shell.hotkeys.close();
        this._shell.poster.close();
        this._shell.windows.close();
    }

    _listen() {
        this._path = GLib.build_filenamev([GLib.get_user_runtime_dir(), socketName]);
        GLib.unlink(this._path);  // of a shell that crashed
        this._listener = new Gio.SocketService();
        this._listener.add_address(Gio.UnixSocketAddress.new(this._path), Gio.SocketType.STREAM,
            Gio.SocketProtocol.DEFAULT, null);
        this._listener.connect('incoming', (_listener, connection) => {
            this._take(connection);
            return true;
        });
        this._listener.start();
    }

    _isServed(connection) {
        const [isRead, program] = GLib.file_get_contents(GLib.build_filenamev([this._folder, 'program']));
        if (!isRead)
            return false;
        const wanted = fileAt(new TextDecoder().decode(program).trim());
        const process = connection.get_socket().get_credentials().get_unix_pid();
        return wanted !== null && wanted === fileAt(`/proc/${process}/exe`);
    }

    _take(connection) {
        let isServed = false;
        try {
            isServed = this._isServed(connection);
        } catch (error) {
            logError(error);
        }
        if (!isServed) {
            connection.close(null);
            return;
        }
        const client = new Client(connection, this._shell, () => this._clients.delete(client));
        this._clients.add(client);
    }
}
