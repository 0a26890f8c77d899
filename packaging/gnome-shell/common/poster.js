// Presses keys on a keyboard of its own. Modifiers that the user holds would join them, so they are put aside before.

import Clutter from 'gi://Clutter';
import GLib from 'gi://GLib';
import Meta from 'gi://Meta';
import Shell from 'gi://Shell';

const heldModifiers = Clutter.ModifierType.SHIFT_MASK | Clutter.ModifierType.CONTROL_MASK |
    Clutter.ModifierType.MOD1_MASK | Clutter.ModifierType.MOD4_MASK;

// Codes of the kernel, of the left key and the right one. Right Alt is a level key in many layouts.
const modifierCodes = {shift: [42, 54], control: [29, 97], alt: [56, 56]};

// A window is told those modifiers that are down at the moment when the shell hands on its key, whatever they were when
// it was pressed. So they stay down until then: a key follows that no keyboard has, and once the shell hands on that
// one, it has handed on those before. Where the field takes text from an input method each key makes a round by that,
// and comes by a second time.
const markCode = 194;
const accelerators = {shift: '<Shift>', control: '<Control>', alt: '<Alt>'};
const markLimit = 1000;  // milliseconds; a busy machine may take as long

const xkbOverKernel = 8;
const mostLooks = 20;  // for the new keymap
const betweenLooks = 4;  // milliseconds
const ownFor = 100;  // milliseconds in which a posted key comes back as an event

function after(milliseconds) {
    return new Promise(resolve => GLib.timeout_add(GLib.PRIORITY_DEFAULT, milliseconds, () => {
        resolve();
        return GLib.SOURCE_REMOVE;
    }));
}

function nextTurn() {
    return new Promise(resolve => GLib.idle_add(GLib.PRIORITY_HIGH, () => {
        resolve();
        return GLib.SOURCE_REMOVE;
    }));
}

function isHolding() {
    return (global.get_pointer()[2] & heldModifiers) !== 0;
}

function now() {
    return GLib.get_monotonic_time() / 1000;
}

function backend() {
    return global.stage.context?.get_backend?.() ?? Clutter.get_default_backend();
}

export class Poster {
    constructor(Main, KeyboardManager) {
        this._Main = Main;
        this._KeyboardManager = KeyboardManager;
        this._side = 0;
        this._posted = new Map();
        this._turn = Promise.resolve();
    }

    close() {
        this._device = null;
    }

    // Whether this is what was posted here. By its key: some events name another device than that which posted them.
    isOwn(event) {
        return now() - (this._posted.get(event.get_key_code() - xkbOverKernel) ?? -Infinity) < ownFor;
    }

    // A key by its codes while each of the layouts is in force, with these modifiers.
    press(modifiers, codes) {
        return this._inTurn(() => this._press(modifiers, codes));
    }

    // A key that is asked for while a chord is under way would be one with its modifiers.
    _inTurn(step) {
        const turn = this._turn.then(step);
        this._turn = turn.catch(() => {});
        return turn;
    }

    _press(modifiers, codes) {
        const code = codes[this._layoutInForce()] ?? codes[0];
        if (modifiers.length === 0) {
            this._strike(code);
            return {};
        }
        return this._chord(modifiers, code);
    }

    async _chord(modifiers, code) {
        const held = modifiers.map(each => modifierCodes[each][this._side]);
        this._notify(held, Clutter.KeyState.PRESSED);
        this._strike(code);
        try {
            await this._handedOn(modifiers);
        } finally {
            this._notify(held.reverse(), Clutter.KeyState.RELEASED);
        }
        return {};
    }

    _strike(code) {
        this._notify([code], Clutter.KeyState.PRESSED);
        this._notify([code], Clutter.KeyState.RELEASED);
    }

    _notify(codes, state) {
        for (const code of codes) {
            this._posted.set(code, now());
            this._keyboard().notify_key(0, code, state);
        }
    }

    // Strikes the mark, and resolves when the shell has handed it on.
    async _handedOn(modifiers) {
        const accelerator = `${modifiers.map(each => accelerators[each]).join('')}0x${
            (markCode + xkbOverKernel).toString(16)}`;
        const action = global.display.grab_accelerator(accelerator, Meta.KeyBindingFlags.NONE);
        if (action === Meta.KeyBindingAction.NONE)
            return;
        const name = Meta.external_binding_name_for_action(action);
        this._Main.wm.allowKeybinding(name, Shell.ActionMode.ALL);
        let filter = 0;
        const isThere = new Promise(resolve => {
            filter = global.window_manager.connect('filter-keybinding', (_manager, binding) => {
                if (binding.get_name() !== name)
                    return false;
                const isRound = Clutter.get_current_event().get_flags() & Clutter.EventFlags.FLAG_INPUT_METHOD;
                if (isRound || !this._Main.inputMethod?.currentFocus)
                    resolve();
                return true;
            });
        });
        this._strike(markCode);
        await Promise.race([isThere, after(markLimit)]);
        await nextTurn();  // no longer within the binding that goes now
        global.window_manager.disconnect(filter);
        this._Main.wm.allowKeybinding(name, Shell.ActionMode.NONE);
        global.display.ungrab_accelerator(action);
    }

    // A keymap that is set anew forgets which keys are down; a key that is held physically would be dropped if it were
    // posted, so from here on its twin is.
    putAside() {
        return this._inTurn(() => this._forgetHeld());
    }

    async _forgetHeld() {
        if (!isHolding())
            return {};
        this._side = 1;
        const manager = this._KeyboardManager.getKeyboardManager();
        if (manager._current) {
            manager._currentKeymap = null;
            manager.reapply();
        } else {
            global.backend.set_keymap('us', '', '');
        }
        for (let looks = 0; looks < mostLooks && isHolding(); looks++)
            await after(betweenLooks);
        await this._handedOn([]);  // the window is told of modifiers with a key only
        return {};
    }

    giveBack() {
        this._side = 0;
        return {};
    }

    // Whether keys go somewhere else than to the window in front, and whether an input method shows a word.
    state() {
        return {
            isHeld: this._Main.sessionMode.isLocked || this._Main.actionMode !== Shell.ActionMode.NORMAL,
            isComposing: this._Main.inputMethod?.hasPreedit?.() ?? false,
        };
    }

    _layoutInForce() {
        return this._KeyboardManager.getKeyboardManager()._current?.groupIndex ?? 0;
    }

    _keyboard() {
        if (!this._device) {
            this._device = backend().get_default_seat().create_virtual_device(
                Clutter.InputDeviceType.KEYBOARD_DEVICE);
        }
        return this._device;
    }
}
