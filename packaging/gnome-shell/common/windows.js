// The windows of the session, as records for the program.

import Meta from 'gi://Meta';
import Shell from 'gi://Shell';

const changes = ['notify::title', 'position-changed', 'size-changed'];

function areaOf(rectangle) {
    return {x: rectangle.x, y: rectangle.y, width: rectangle.width, height: rectangle.height};
}

function entryOf(window) {
    const id = Shell.WindowTracker.get_default().get_window_app(window)?.get_id() ?? '';
    return id.startsWith('window:') ? '' : id.replace(/\.desktop$/, '');
}

function recordOf(window) {
    return {
        id: `${window.get_id()}`,
        pid: window.get_pid(),
        entry: entryOf(window),
        class: window.get_wm_class() ?? '',
        instance: window.get_wm_class_instance() ?? '',
        title: window.get_title() ?? '',
        surface: areaOf(window.get_buffer_rect()),
        frame: areaOf(window.get_frame_rect()),
        isNative: window.get_client_type() === Meta.WindowClientType.WAYLAND,
        isShown: window.showing_on_its_workspace() && window.located_on_workspace(
            global.workspace_manager.get_active_workspace()),
    };
}

export class Windows {
    constructor() {
        this._watchers = new Map();
        this._gone = global.window_manager.connect('destroy', (_manager, actor) => {
            for (const gone of this._watchers.values())
                gone(`${actor.meta_window.get_id()}`);
        });
        this._focus = global.display.connect('notify::focus-window', () => this._follow());
        this._signals = [];
        this._follow();
    }

    close() {
        this._forget();
        global.window_manager.disconnect(this._gone);
        global.display.disconnect(this._focus);
    }

    // Calls back when another window is in front, or that has changed, and when a window is gone.
    watch(changed, gone) {
        this._watchers.set(changed, gone);
    }

    unwatch(changed) {
        this._watchers.delete(changed);
    }

    front() {
        return this._front ? recordOf(this._front) : null;
    }

    // The one with the keyboard first, then the others from front to back.
    all() {
        const windows = global.display.sort_windows_by_stacking(
            global.get_window_actors().map(actor => actor.meta_window)).reverse();
        const ordered = windows.filter(each => each === this._front).concat(windows.filter(each => each !== this._front));
        return ordered.filter(each => !each.is_override_redirect()).map(recordOf);
    }

    displays() {
        const primary = global.display.get_primary_monitor();
        const displays = [];
        for (let number = 0; number < global.display.get_n_monitors(); number++)
            displays.push({number, ...areaOf(global.display.get_monitor_geometry(number))});
        return displays.sort((one, other) => (other.number === primary) - (one.number === primary));
    }

    find(id) {
        return global.get_window_actors().map(actor => actor.meta_window).find(each => `${each.get_id()}` === id) ?? null;
    }

    activate(id, Main) {
        const window = this.find(id);
        if (window)
            Main.activateWindow(window);
        return window !== null;
    }

    _follow() {
        this._forget();
        this._front = global.display.focus_window;
        if (this._front)
            this._signals = changes.map(change => [this._front, this._front.connect(change, () => this._tell())]);
        this._tell();
    }

    _forget() {
        for (const [window, signal] of this._signals)
            window.disconnect(signal);
        this._signals = [];
        this._front = null;
    }

    _tell() {
        for (const changed of this._watchers.keys())
            changed();
    }
}
