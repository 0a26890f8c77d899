#!/usr/bin/env bash
# Installs build/tavrelon.deb in a fresh root, works with it there, and removes it. Called by scripts/package.
set -euo pipefail
place=$PWD/build/fresh-root
root=$place/root
say() { printf '\n== %s\n' "$*"; }
in_root() { chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"; }

say "a fresh root of Debian 12"
mkdir -p "$place/archives/partial"
if [ ! -e "$place/base.done" ]; then
    rm -rf "$place/base"
    debootstrap --variant=minbase bookworm "$place/base" http://deb.debian.org/debian >"$place/debootstrap.log" 2>&1 ||
        { tail -n 20 "$place/debootstrap.log" >&2; exit 1; }
    touch "$place/base.done"
fi
rm -rf "$root"
cp -a --reflink=auto "$place/base" "$root"
cp build/tavrelon.deb "$root/root/tavrelon.deb"
# The same files under a newer version: what an upgrade puts in the place of those that are in use.
rm -rf "$place/next"
dpkg-deb -R build/tavrelon.deb "$place/next"
sed -i 's/^Version: .*/&+next/' "$place/next/DEBIAN/control"
dpkg-deb --root-owner-group -b "$place/next" "$root/root/tavrelon-next.deb" >/dev/null
mount -t proc proc "$root/proc"
mount --bind "$place/archives" "$root/var/cache/apt/archives"
mount --bind /tmp "$root/tmp"  # where the display, the buses and the homes of the private desktop are

everything() { in_root find / -xdev \( -path /proc -o -path /tmp -o -path /var/cache/apt \) -prune -o -print | sort; }

say "apt install ./tavrelon.deb"
printf 'APT::Install-Recommends "false";\nBinary::apt-get::APT::Keep-Downloaded-Packages "true";\n' >"$root/etc/apt/apt.conf.d/90proof"
in_root apt-get -q update >"$place/apt.log" 2>&1 || { tail -n 20 "$place/apt.log" >&2; exit 1; }
in_root sh -c 'cd /root && apt-get -q -y install ./tavrelon.deb' >>"$place/apt.log" 2>&1 || { tail -n 20 "$place/apt.log" >&2; exit 1; }
in_root dpkg-query -W -f '${Package} ${Version}: ${Status}\n' tavrelon
everything >"$place/installed.txt"
in_root tavrelon --version
if in_root sh -c 'ldd /usr/libexec/tavrelon/*' | grep 'not found'; then exit 1; fi

cat >"$place/upgrade" <<END
#!/bin/sh
exec chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive \\
    apt-get -q -y install /root/tavrelon-next.deb >>"$place/apt.log" 2>&1
END
printf '#!/bin/sh\nexec chroot "%s" /usr/bin/tavrelon "$@"\n' "$root" >"$place/tavrelon"
chmod +x "$place/tavrelon" "$place/upgrade"

say "a first answer, the demonstration, the dashboard and an upgrade with the program of the fresh root"
env -u TMPDIR scripts/on-desktop python3 -B scripts/lib/package_session.py \
    build/package "$place/session" "$place/tavrelon" "$place/upgrade" </dev/null
in_root dpkg-query -W -f '${Package} ${Version}: ${Status}\n' tavrelon

say "apt purge tavrelon"
in_root apt-get -q -y purge tavrelon >>"$place/apt.log" 2>&1
everything >"$place/purged.txt"
in_root dpkg --contents /root/tavrelon.deb | awk '{print $6}' | sed 's/^\.//; s|/$||' | sort >"$place/shipped.txt"
kept=$(comm -13 "$place/installed.txt" "$place/purged.txt" | grep -Ev '^/var/(lib/(dpkg|apt)|log|cache)/' || true)
named=$(grep -i tavrelon "$place/purged.txt" | grep -vxE '/root/tavrelon(-next)?\.deb' || true)
gone=$(comm -23 "$place/installed.txt" "$place/purged.txt" | grep -Ev '^/var/lib/dpkg/' || true)
foreign=$(comm -23 <(echo "$gone") "$place/shipped.txt")
if [ -n "$kept$named$foreign" ]; then
    printf 'left behind or taken away wrongly:\n%s\n' "$kept$named$foreign" >&2
    exit 1
fi
echo "$(wc -l <<<"$gone") files and folders went, which are those that came; nothing of the package is left"

umount "$root/proc" "$root/var/cache/apt/archives" "$root/tmp"
rm -rf --one-file-system "$root"
