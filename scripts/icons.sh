#!/usr/bin/env bash
# Draws Vorkam's icon at the usual sizes from packaging/vorkam.svg into packaging/icons/.
# Run after changing the picture; the PNG files are kept in git so a build needs no SVG tools.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh librsvg2-bin
for size in 16 24 32 48 64 128 256; do
  rsvg-convert -w "$size" -h "$size" packaging/vorkam.svg -o "packaging/icons/vorkam-$size.png"
done
echo "Kuvakkeet piirretty: packaging/icons/"
