#!/usr/bin/env bash
# Builds Vorkam's Debian package from the Release build that run.sh also uses (no tests):
# installed under /usr (the program's folder /usr/lib/vorkam, links in /usr/bin) and packed by
# CPack, with the dependencies computed from the libraries the programs link.
# Usage: scripts/package.sh [output-folder]   (default: the project's folder)
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh dpkg-dev
out=$(realpath -m "${1:-.}")
mkdir -p "$out"
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release -DVORKAM_TESTS=OFF >/dev/null
cmake --build build -j2
(cd build && cpack -G DEB -B "$out/.cpack" >/dev/null)
deb=$(ls -t "$out"/.cpack/vorkam_*.deb | head -n1)
mv -f "$deb" "$out/"
rm -rf "$out/.cpack"
echo "Paketti: $out/$(basename "$deb")"
echo "Asennus: apt install $out/$(basename "$deb")"
