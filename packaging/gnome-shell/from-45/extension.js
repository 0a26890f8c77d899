// The entry of shells from 45 on. What it does is in service.js, which all shells share.
//
// It stays enabled on the lock screen, where it serves nothing: the program could not prove anew who it is.

import {Extension} from 'resource:///org/gnome/shell/extensions/extension.js';
import * as Main from 'resource:///org/gnome/shell/ui/main.js';
import * as KeyboardManager from 'resource:///org/gnome/shell/misc/keyboardManager.js';

import {Service} from './service.js';

export default class TavrelonExtension extends Extension {
    enable() {
        this._service = new Service(this.path, Main, KeyboardManager);
    }

    disable() {
        this._service?.close();
        this._service = null;
    }
}
