#!/usr/bin/env bash
# Installs the Debian packages Vorkam needs to build, run and test, when they are missing.
# Usage: scripts/install-deps.sh [extra-package ...]
set -euo pipefail

packages=(cmake ninja-build g++ pkg-config qt6-base-dev qt6-base-dev-tools libqt6sql6-sqlite qt6-charts-dev
  libqt6opengl6-dev libgl-dev fonts-liberation sqlite3 libsqlite3-dev clang-format libhpdf-dev libxlsxwriter-dev zlib1g-dev
  libfreetype-dev qt6-translations-l10n mdbtools-dev libblkid-dev poppler-utils unzip python3 dpkg-dev desktop-file-utils appstream libcurl4-openssl-dev
  python3-aiosmtpd mdbtools dosfstools openssl "$@")

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Asennetaan puuttuvat paketit: ${missing[*]}"
if [ "$(id -u)" -eq 0 ]; then
  sudo=()
elif command -v sudo >/dev/null 2>&1; then
  sudo=(sudo)
else
  echo "Paketteja ei voi asentaa: aja pääkäyttäjänä tai asenna sudo." >&2
  exit 1
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo[@]}" apt-get update -qq
"${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
