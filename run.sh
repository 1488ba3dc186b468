#!/usr/bin/env bash
# Installs what is missing, builds Vorkam (Release) and starts it. The first start opens the
# demo association, build/bin/demo1.mdb.
set -euo pipefail
cd "$(dirname "$0")"
scripts/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release -DVORKAM_TESTS=OFF >/dev/null
cmake --build build -j2
exec build/bin/vorkam
