// The entry of shells before 45. What it does is in service.js, which all shells share.
//
// It stays enabled on the lock screen, where it serves nothing: the program could not prove anew who it is.

const ExtensionUtils = imports.misc.extensionUtils;
const Main = imports.ui.main;
const KeyboardManager = imports.misc.keyboardManager;

class TavrelonExtension {
    enable() {
        const folder = ExtensionUtils.getCurrentExtension().path;
        this._isWanted = true;
        import(`file://${folder}/service.js`).then(({Service}) => {
            if (this._isWanted && !this._service)
                this._service = new Service(folder, Main, KeyboardManager);
        }).catch(logError);
    }

    disable() {
        this._isWanted = false;
        this._service?.close();
        this._service = null;
    }
}

function init() {
    return new TavrelonExtension();
}
