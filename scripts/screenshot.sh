#!/usr/bin/env bash
# Takes the README's picture of the main window: builds Vorkam, starts it on the demo
# association under a virtual display with a private home folder, and saves the screen.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh xvfb xauth imagemagick
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release -DVORKAM_TESTS=OFF >/dev/null
cmake --build build -j2 >/dev/null

home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
out=${1:-docs/paaikkuna.png}
HOME="$home" XDG_CONFIG_HOME="$home/.config" xvfb-run -a -s "-screen 0 800x600x24" bash -c '
  build/bin/vorkam & pid=$!
  sleep 4
  import -window root -trim +repage "$0"
  kill $pid
' "$out"
echo "Kuva tallennettu: $out"
