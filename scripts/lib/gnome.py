"""What GNOME's shell tells a test: its own script runs within it, which the stage among its extensions allows."""

import contextlib
import json

import dbus
from waiting import Fault, wait_for


def evaluate(script):
    shell = dbus.SessionBus().get_object("org.gnome.Shell", "/org/gnome/Shell")
    is_done, told = shell.Eval(script, dbus_interface="org.gnome.Shell", timeout=20)
    if not is_done:
        raise Fault(f"the shell does not run '{script}': {told}")
    return json.loads(told) if told else None


def front_title():
    return evaluate("global.display.focus_window?.get_title() ?? ''")


def is_free(accelerator):
    return evaluate(f"""(() => {{
        const action = global.display.grab_accelerator('{accelerator}', 0);
        if (action !== 0)
            global.display.ungrab_accelerator(action);
        return action !== 0;
    }})()""")


@contextlib.contextmanager
def taken(accelerator):
    """Somebody else has these keys."""
    action = evaluate(f"global.display.grab_accelerator('{accelerator}', 0)")
    try:
        yield
    finally:
        evaluate(f"global.display.ungrab_accelerator({action})")


def picture_of_focused_window(path):
    """As the window has drawn itself, up to its visible edge."""
    evaluate(f"""(() => {{
        const {{Gio, Shell}} = imports.gi;
        const stream = Gio.File.new_for_path('{path}.part').replace(null, false, 0, null);
        const window = global.display.focus_window;
        const texture = window.get_compositor_private().paint_to_content(null).get_texture();
        const frame = window.get_frame_rect(), around = window.get_buffer_rect();
        Shell.Screenshot.composite_to_stream(texture, frame.x - around.x, frame.y - around.y, frame.width, frame.height,
            1, null, 0, 0, 1, stream, () => {{
            stream.close(null);
            Gio.File.new_for_path('{path}.part').move(Gio.File.new_for_path('{path}'), 0, null, null);
        }});
    }})()""")
    wait_for("a picture of the window", path.exists, 20)
    return path


def screen_picture(path):
    path = path.resolve()  # for the shell, which runs elsewhere
    evaluate(f"""(() => {{
        const {{Gio, Shell}} = imports.gi;
        const stream = Gio.File.new_for_path('{path}.part').replace(null, false, 0, null);
        new Shell.Screenshot().screenshot(false, stream, () => {{
            stream.close(null);
            Gio.File.new_for_path('{path}.part').move(Gio.File.new_for_path('{path}'), 0, null, null);
        }});
    }})()""")
    wait_for("a picture of the screen", path.exists, 20)
