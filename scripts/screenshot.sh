#!/usr/bin/env bash
# Takes the pictures of the README and the user manual: builds Vorkam (Release), starts it on a
# copy of the demo association in a neutral private home folder under a virtual display, opens
# its windows with the keyboard as a user would, and saves each window.
# Usage: scripts/screenshot.sh            pictures into docs/ and docs/kayttoohje/kuvat/
#        VORKAM_BUILD=build-test scripts/screenshot.sh   the pictures of an existing build
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh xvfb xauth imagemagick xdotool openbox
build=${VORKAM_BUILD:-build}
if [ -z "${VORKAM_BUILD:-}" ]; then
  cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release -DVORKAM_TESTS=OFF >/dev/null
  cmake --build build -j2 >/dev/null
fi
export ASAN_OPTIONS=detect_leaks=0

home=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null || true; rm -rf "$home"' EXIT
mkdir -p "$home/.config/Vorkam"
kuvat=docs/kayttoohje/kuvat
mkdir -p "$kuvat"
export HOME=$home XDG_CONFIG_HOME=$home/.config LANG=fi_FI.UTF-8

display=:$((90 + RANDOM % 9))
Xvfb "$display" -screen 0 1024x768x24 -nolisten tcp >/dev/null 2>&1 &
export DISPLAY=$display
sleep 1
openbox >/dev/null 2>&1 &
sleep 1
"$build/bin/vorkam" >/dev/null 2>&1 &
sleep 4

key() { xdotool key --delay 120 "$@"; sleep 1.5; }
shot() { import -window "$(xdotool getactivewindow)" "$kuvat/$1.png"; echo "  $kuvat/$1.png"; }

echo "Kuvat:"
shot paaikkuna
cp "$kuvat/paaikkuna.png" docs/paaikkuna.png
key alt+t t; shot tositteet; key alt+F4
key alt+t i; shot tilit; key alt+F4
key alt+t u; shot tulos-ja-tase; key alt+F4
key alt+t a; shot asetukset; key Escape
# The last items of the Tietokanta menu: Tietoja, and the service file mail above it.
key alt+i Up Return; shot tietoja; key Escape
key alt+i Up Up Return; shot huoltotiedosto; key Escape
# The statement import: March stored with the accounts typed in, April proposed from them.
vuosi=$(sqlite3 "$home/Documents/Vorkam/demo1.mdb" "SELECT substr(MAX(toPvm), 1, 4) FROM \"to\"")
for kk in maaliskuu huhtikuu; do
  sed "s/@VUOSI@/$vuosi/g" scripts/tiliotteet/$kk.xml >"$home/$kk.xml"
done
key alt+t e; key alt+d; xdotool type --delay 20 "$home/maaliskuu.xml"; key Return
xdotool key Right Right Right Right Right
for tili in 5000 5000 4240 3100 6600 4600 3000; do
  xdotool type --delay 40 "$tili"; key Return Down
done
key alt+t; key Return
key alt+d ctrl+a; xdotool type --delay 20 "$home/huhtikuu.xml"; key Return
shot tiliote; key alt+F4
