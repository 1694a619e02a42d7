#!/usr/bin/env bash
# Usage: assets/icon/render.sh
#
# Draws the sizes of the icon anew from brevane.svg, with rsvg-convert (Debian: librsvg2-bin).

set -euo pipefail
cd "$(dirname "$0")"
for size in 16 24 32 48 64 128 256 512 1024; do
    rsvg-convert --width $size --height $size --output brevane-$size.png brevane.svg
done
