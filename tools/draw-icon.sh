#!/usr/bin/env bash
# Makes res/installer.ico from the drawings in res/icon. Small sizes have drawings of their own, with bars of whole pixels
# and without ornaments, so that they stay crisp. Needs librsvg2-bin and icoutils, which nothing else here does.
source "$(dirname "$0")/common.sh"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for size in 16 32 48 256; do
  rsvg-convert "$root/res/icon/$size.svg" --output "$work/$size.png"
done
# Only the largest is packed: Windows Vista reads no other size as PNG.
icotool --create --output="$root/res/installer.ico" "$work"/{16,32,48}.png --raw="$work/256.png"
