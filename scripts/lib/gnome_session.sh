# bash: sourced by on-desktop: GNOME's shell without a screen. It asks a system bus for logind, so both are played.
export DBUS_SYSTEM_BUS_ADDRESS=unix:path=$XDG_RUNTIME_DIR/system-bus XDG_CURRENT_DESKTOP=GNOME
dbus-daemon --session --address="$DBUS_SYSTEM_BUS_ADDRESS" --nofork --nopidfile \
    </dev/null >"$XDG_RUNTIME_DIR/system-bus.log" 2>&1 &
system_bus=$!
for _ in $(seq 100); do
    [ -S "$XDG_RUNTIME_DIR/system-bus" ] && break
    sleep 0.05
done
/usr/bin/python3 -m dbusmock --system --template logind </dev/null >"$XDG_RUNTIME_DIR/logind.log" 2>&1 &
logind=$!
sleep 1
gnome-shell --headless --wayland --virtual-monitor 1280x800 --wayland-display wayland-tavrelon \
    </dev/null >"$XDG_RUNTIME_DIR/gnome.log" 2>&1 &
manager=$!
# The stage among its extensions makes this file; what is waited for here is a slow start beside other work.
for _ in $(seq 600); do
    [ -e "$XDG_RUNTIME_DIR/window-manager" ] && break
    kill -0 "$manager" 2>/dev/null || break
    sleep 0.1
done
if [ -e "$XDG_RUNTIME_DIR/window-manager" ]; then
    {
        echo WAYLAND_DISPLAY=wayland-tavrelon
        sed -n "s/.*Using public X11 display \(:[0-9]*\).*/DISPLAY=\1/p" "$XDG_RUNTIME_DIR/gnome.log" | head -n 1
        printf 'XAUTHORITY=%s\n' "$XDG_RUNTIME_DIR"/.mutter-Xwaylandauth.*
    } >"$XDG_RUNTIME_DIR/sockets"
fi
touch "$XDG_RUNTIME_DIR/window-manager"
trap 'kill "$logind" "$system_bus" 2>/dev/null' EXIT
