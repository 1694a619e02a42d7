#!/usr/bin/env bash
# Usage: try-package.sh ROOT PACKAGE
#
# Installs a package in the file system of a fresh Debian, starts the program on $DISPLAY, removes
# the package again and sees whether anything of it is left. Called by mmdebstrap, with the rights of
# that system's root.

set -euo pipefail

root=$1
package=$2

# What there is, without what installing anything at all changes.
files() {
    (cd "$root" && find . -xdev \( -path ./proc -o -path ./sys -o -path ./dev -o -path ./tmp -o -path ./run \
        -o -path ./var/lib/dpkg -o -path ./var/lib/apt -o -path ./var/cache -o -path ./var/log \) -prune -o -print) | sort
}

inside() { chroot "$root" env DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 "$@"; }

cp "$package" "$root/tmp/brevane.deb"
inside apt-get -q -y satisfy --no-install-recommends "$(dpkg-deb --field "$package" Depends)"
files >"$root/tmp/before"
inside apt-get -q -y install --no-install-recommends /tmp/brevane.deb

inside brevane --version
mkdir -m 700 "$root/tmp/trial"
# Not by the function, so that what can be ended is the program itself.
chroot "$root" env XDG_CONFIG_HOME=/tmp/trial XDG_RUNTIME_DIR=/tmp/trial LC_ALL=C.UTF-8 DISPLAY="$DISPLAY" brevane &
program=$!
timeout 60 xdotool search --sync --onlyvisible --name '^Brevane$' >/dev/null
kill -TERM $program
wait $program

inside apt-get -q -y purge brevane
files >"$root/tmp/after"
diff "$root/tmp/before" "$root/tmp/after"
