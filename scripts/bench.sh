#!/bin/sh
# Builds and runs every benchmark.
set -eu
cd "$(dirname "$0")/.."

cmake --preset bench >/dev/null
cmake --build --preset bench
for program in build/bench/bench/*_bench; do
  echo "== $(basename "$program")"
  "$program" "$@"
done
