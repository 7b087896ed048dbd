#!/usr/bin/env bash
# Renders the PNG sizes of Finora's icon from its SVG, into data/icons/hicolor/. Run it after
# changing the SVG and commit the pictures: builds use them as they are and need no SVG renderer.
# Needs rsvg-convert (Debian: librsvg2-bin).
set -euo pipefail
cd "$(dirname "$0")/.."
svg=data/icons/bg.finora.Finora.svg
for size in 16 24 32 48 64 128 256; do
  out=data/icons/hicolor/${size}x${size}/apps
  mkdir -p "$out"
  rsvg-convert -w "$size" -h "$size" "$svg" -o "$out/bg.finora.Finora.png"
done
