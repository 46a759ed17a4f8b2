#!/bin/sh
# The checks that are too slow for every build. Stops at the first that fails.
set -eu
cd "$(dirname "$0")/.."

start=$(date +%s)
step() { printf '\n== %s (after %s s)\n' "$*" "$(($(date +%s) - start))"; }

scripts/setup.sh --checks

step "format"
scripts/format.sh --check

step "clang, warnings as errors, address and undefined behaviour sanitizers"
cmake --preset asan >/dev/null
cmake --build --preset asan
ctest --preset asan --progress

step "32-bit build"
scripts/build32.sh

step "clang-tidy"
find "$PWD/src" "$PWD/kivdb" -name '*.cpp' ! -path '*/tests/*' -print0 2>/dev/null |
  xargs -0 -n 4 -P "$(nproc)" clang-tidy-14 -p build/asan --quiet

if [ -d fuzz ]; then
  step "fuzzing"
  scripts/fuzz.sh 60
fi
