// Pictures as PNG. A window's is what it has drawn itself up to its visible edge, whatever lies over it.

import Gio from 'gi://Gio';
import GLib from 'gi://GLib';
import Shell from 'gi://Shell';

function encoded(stream) {
    stream.close(null);
    return {png: GLib.base64_encode(stream.steal_as_bytes().toArray())};
}

export function pictureOfWindow(window) {
    const actor = window?.get_compositor_private();
    if (!actor)
        throw new Error('the window is no longer there');
    const texture = actor.paint_to_content(null).get_texture();
    const surface = window.get_buffer_rect();
    const frame = window.get_frame_rect();
    const scale = texture.get_width() / surface.width;
    const place = [frame.x - surface.x, frame.y - surface.y, frame.width, frame.height].map(
        each => Math.max(0, Math.round(each * scale)));
    const stream = Gio.MemoryOutputStream.new_resizable();
    return new Promise((resolve, reject) => {
        Shell.Screenshot.composite_to_stream(texture, ...place, 1, null, 0, 0, 1, stream, (_source, result) => {
            try {
                Shell.Screenshot.composite_to_stream_finish(result);
                resolve(encoded(stream));
            } catch (error) {
                reject(error);
            }
        });
    });
}

export function pictureOfScreen(display) {
    const stream = Gio.MemoryOutputStream.new_resizable();
    const {x, y, width, height} = global.display.get_monitor_geometry(display);
    const screenshot = new Shell.Screenshot();
    return new Promise((resolve, reject) => {
        screenshot.screenshot_area(x, y, width, height, stream, (_source, result) => {
            try {
                screenshot.screenshot_area_finish(result);
                resolve(encoded(stream));
            } catch (error) {
                reject(error);
            }
        });
    });
}
