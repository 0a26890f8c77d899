// Lets tests ask the shell anything, and shows the windows once it has started.

const {GLib} = imports.gi;
const Main = imports.ui.main;

class Stage {
    enable() {
        global.context.unsafe_mode = true;
        // The shell still opens its overview itself.
        this._tick = GLib.timeout_add(GLib.PRIORITY_DEFAULT, 100, () => {
            if (Main.layoutManager._startingUp)
                return GLib.SOURCE_CONTINUE;
            if (Main.overview.visible) {
                Main.overview.hide();
                return GLib.SOURCE_CONTINUE;
            }
            GLib.file_set_contents(`${GLib.get_user_runtime_dir()}/window-manager`, '');
            this._tick = 0;
            return GLib.SOURCE_REMOVE;
        });
    }

    disable() {
        if (this._tick)
            GLib.source_remove(this._tick);
        this._tick = 0;
    }
}

function init() {
    return new Stage();
}
