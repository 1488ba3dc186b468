#!/usr/bin/env bash
# Installs what is missing, builds with warnings as errors and the address and undefined-
# behaviour sanitizers, and runs every test. Exits non-zero when anything fails.
set -euo pipefail
cd "$(dirname "$0")"
scripts/install-deps.sh
# Every C++ file as clang-format writes it.
git ls-files -z -- '*.cpp' '*.h' | xargs -0 clang-format --dry-run --Werror
cmake -S . -B build-test -G Ninja -DCMAKE_BUILD_TYPE=Debug -DVORKAM_WERROR=ON -DVORKAM_SANITIZE=ON >/dev/null
cmake --build build-test -j2
cd build-test
ctest --output-on-failure -j2
