// Which keys are whose. A press is told to the client that has the key, and kept from the window in front; modifiers
// alone reach it always.

import Clutter from 'gi://Clutter';
import GLib from 'gi://GLib';
import Meta from 'gi://Meta';
import Shell from 'gi://Shell';

const longestStrike = 1000;  // milliseconds; whoever holds modifiers longer thinks of something else
const betweenLooks = 15;  // milliseconds

const heldModifiers = Clutter.ModifierType.SHIFT_MASK | Clutter.ModifierType.CONTROL_MASK |
    Clutter.ModifierType.MOD1_MASK | Clutter.ModifierType.MOD4_MASK;

export class HotkeyTable {
    constructor(Main, poster) {
        this._Main = Main;
        this._poster = poster;
        this._byAccelerator = new Map();
        this._byBinding = new Map();
        this._strikes = new Set();
        this._filter = global.window_manager.connect('filter-keybinding',
            (_manager, binding) => this._isForApplication(binding));
    }

    close() {
        global.window_manager.disconnect(this._filter);
        for (const held of [...this._byAccelerator.values()])
            this._ungrab(held);
        for (const strike of this._strikes)
            GLib.source_remove(strike);
        this._strikes.clear();
    }

    // Holds for the client what it wants and nothing else; gives what somebody else has.
    hold(client, wanted) {
        const accelerators = new Set(wanted.flatMap(each => each.accelerators));
        for (const held of [...this._byAccelerator.values()]) {
            if (held.client === client && !accelerators.has(held.accelerator))
                this._ungrab(held);
        }
        const taken = new Set();
        for (const hotkey of wanted) {
            for (const accelerator of hotkey.accelerators) {
                const held = this._byAccelerator.get(accelerator);
                if (held?.client === client)
                    Object.assign(held, {name: hotkey.name, fires: hotkey.fires});
                else if (!this._grab({client, accelerator, name: hotkey.name, fires: hotkey.fires}))
                    taken.add(hotkey.name);
            }
        }
        return [...taken];
    }

    letGoOf(client) {
        for (const held of [...this._byAccelerator.values()]) {
            if (held.client === client)
                this._ungrab(held);
        }
    }

    // What another client has counts as free: it is the same program.
    isFree(accelerator) {
        const held = {accelerator};
        if (this._byAccelerator.has(accelerator))
            return true;
        if (!this._grab(held))
            return false;
        this._ungrab(held);
        return true;
    }

    _grab(held) {
        held.action = global.display.grab_accelerator(held.accelerator, Meta.KeyBindingFlags.NONE);
        if (held.action === Meta.KeyBindingAction.NONE)
            return false;
        held.binding = Meta.external_binding_name_for_action(held.action);
        this._Main.wm.allowKeybinding(held.binding, Shell.ActionMode.NORMAL);
        this._byAccelerator.set(held.accelerator, held);
        this._byBinding.set(held.binding, held);
        return true;
    }

    _ungrab(held) {
        global.display.ungrab_accelerator(held.action);
        this._Main.wm.allowKeybinding(held.binding, Shell.ActionMode.NONE);
        this._byAccelerator.delete(held.accelerator);
        this._byBinding.delete(held.binding);
    }

    _isForApplication(binding) {
        const held = this._byBinding.get(binding.get_name());
        if (!held)
            return false;  // whosever it is, the shell does with it what it would
        const event = Clutter.get_current_event();
        if (!event || this._poster.isOwn(event))
            return true;
        const isFirst = event.type() === Clutter.EventType.KEY_PRESS &&
            !(event.get_flags() & Clutter.EventFlags.FLAG_REPEATED);
        // A key that goes on to the window is asked about twice.
        const stroke = `${event.get_time()} ${event.get_key_code()}`;
        if (isFirst && stroke !== held.stroke)
            this._pressed(held);
        held.stroke = stroke;
        return held.fires !== 'press';
    }

    _pressed(held) {
        if (held.fires === 'released')
            this._awaitRelease(held);
        else
            held.client?.pressed(held.name);
    }

    _awaitRelease(held) {
        let looks = longestStrike / betweenLooks;
        const strike = GLib.timeout_add(GLib.PRIORITY_DEFAULT, betweenLooks, () => {
            const isDown = (global.get_pointer()[2] & heldModifiers) !== 0;
            if (isDown && --looks > 0)
                return GLib.SOURCE_CONTINUE;
            this._strikes.delete(strike);
            if (!isDown && this._byBinding.get(held.binding) === held)
                held.client?.pressed(held.name);
            return GLib.SOURCE_REMOVE;
        });
        this._strikes.add(strike);
    }
}
