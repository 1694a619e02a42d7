#!/usr/bin/env bash
# Usage: try-package.sh ROOT PACKAGE
#
# Installs an older version of a package in the file system of a fresh system, opens the window on
# $DISPLAY, upgrades while it is open, opens it again as a menu does, removes the package and checks that
# the user's record is all that is left. Called by mmdebstrap, with the rights of that system's root.

set -euo pipefail

root=$1
package=$2

# What there is, without what installing anything at all changes.
files() {
    (cd "$root" && find . -xdev \( -path ./proc -o -path ./sys -o -path ./dev -o -path ./tmp -o -path ./run \
        -o -path ./var/lib/dpkg -o -path ./var/lib/apt -o -path ./var/cache -o -path ./var/log \) -prune -o -print) | sort
}

inside=(chroot "$root" env DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8
    XDG_CONFIG_HOME=/tmp/trial XDG_RUNTIME_DIR=/tmp/trial DISPLAY="$DISPLAY")
apt_get() { "${inside[@]}" apt-get -q -y --no-install-recommends "$@"; }

# await_window: prints the identifier of the window as soon as it is visible.
await_window() { timeout 60 xdotool search --sync --onlyvisible --name '^Brevane$'; }

cp "$package" "$root/tmp/brevane.deb"
dpkg-deb --raw-extract "$package" "$root/tmp/older"
sed -i 's/^Version: .*/Version: 0~older/' "$root/tmp/older/DEBIAN/control"
dpkg-deb --build "$root/tmp/older" "$root/tmp/older.deb"
record=$root/tmp/trial/brevane/preferences.json
mkdir -m 700 "$root/tmp/trial" "${record%/*}"
echo '{"kept": 1}' >"$record"

# gio starts a desktop file as a menu does.
apt_get satisfy "$(dpkg-deb --field "$package" Depends), libglib2.0-bin"
files >"$root/tmp/before"
apt_get install /tmp/older.deb
"${inside[@]}" brevane &
program=$!
await_window

apt_get install /tmp/brevane.deb
[[ $("${inside[@]}" brevane --version) == *"$(dpkg-deb --field "$package" Version)"* ]]
# The new version finds the window of the older one.
"${inside[@]}" timeout 20 brevane
kill -TERM $program
wait $program

"${inside[@]}" gio launch /usr/share/applications/com.brevane.brevane.desktop
program=$(xdotool getwindowpid "$(await_window)")
kill -TERM "$program"
while [[ -e /proc/$program/exe ]]; do sleep 0.1; done

apt_get purge brevane
files >"$root/tmp/after"
diff "$root/tmp/before" "$root/tmp/after"
[[ $(<"$record") == '{"kept": 1}' ]]
