# bash: sourced by on-desktop: the home of a user of GNOME, with the extensions that its shell finds at the start.
gnome_lib=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
extensions=$XDG_DATA_HOME/gnome-shell/extensions
served=tavrelon@tavrelon.org
mkdir -p "$extensions" "$XDG_CONFIG_HOME/glib-2.0/settings"
cp -r "$gnome_lib/gnome-stage" "$extensions/stage@tests"
enabled="'stage@tests'"
if [ -n "${TAVRELON_BUILD:-}" ]; then
    mkdir "$extensions/$served"
    cp "$gnome_lib"/../../packaging/gnome-shell/{common,before-45}/* "$extensions/$served/"
    printf '%s\n' "$(realpath "$TAVRELON_BUILD")/src/tavrelon" >"$extensions/$served/program"
    enabled="$enabled, '$served'"
fi
cat >"$XDG_CONFIG_HOME/glib-2.0/settings/keyfile" <<END
[org/gnome/shell]
enabled-extensions=[$enabled]
welcome-dialog-last-shown-version='999'

[org/gnome/desktop/interface]
enable-hot-corners=false
toolkit-accessibility=true

[org/gnome/desktop/session]
idle-delay=uint32 0
END
export GSETTINGS_BACKEND=keyfile
