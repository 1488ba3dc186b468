#!/usr/bin/env bash
# Takes the README's picture of the main window: builds Vorkam, starts it on a copy of the demo
# association in a neutral private home folder (~/Documents/Vorkam/demo1.mdb) under a virtual
# display, and saves the window.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh xvfb xauth imagemagick
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release -DVORKAM_TESTS=OFF >/dev/null
cmake --build build -j2 >/dev/null

home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
mkdir -p "$home/Documents/Vorkam" "$home/.config/Vorkam"
cp build/bin/demo1.mdb "$home/Documents/Vorkam/demo1.mdb"
printf '[VORKAM]\nDatabase=%s\n' "$home/Documents/Vorkam/demo1.mdb" >"$home/.config/Vorkam/lxvorkam.ini"
out=${1:-docs/paaikkuna.png}
HOME="$home" XDG_CONFIG_HOME="$home/.config" xvfb-run -a -s "-screen 0 800x600x24" bash -c '
  build/bin/vorkam & pid=$!
  sleep 4
  import -window root -trim +repage "$0"
  kill $pid
' "$out"
echo "Kuva tallennettu: $out"
