#!/usr/bin/env bash
# render.sh - make the icons of fixed sizes from the two drawings; needs librsvg2-bin
#
# 16 and 32 pixels have a drawing of their own, whose edges lie on their pixels. Desktops
# scale velmor.svg for every other size; 48 and 128 are for those that cannot.
set -euo pipefail
cd "$(dirname "$0")"
for size in 16 32; do
	rsvg-convert -w $size -h $size ../velmor-small.svg -o $size.png
done
for size in 48 64 128; do
	rsvg-convert -w $size -h $size ../velmor.svg -o $size.png
done
