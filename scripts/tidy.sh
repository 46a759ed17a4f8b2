#!/bin/sh
# tidy.sh BUILD_DIRECTORY: runs clang-tidy over all sources. The directory must have been built by
# clang 14, with the tests and the benchmarks. Sources that it compiles together are checked
# together, which takes a fraction of the time.
set -eu
cd "$(dirname "$0")/.."

build=$1
sed -n 's/^ *"file": "\(.*\)".*/\1/p' "$build/compile_commands.json" | sort -u >"$build/tidy_units"
# What is not compiled there would not be checked.
while read -r unit; do
  echo "$unit"
  case $unit in "$PWD/$build"/*) sed -n 's/^#include "\(.*\)"/\1/p' "$unit" ;; esac
done <"$build/tidy_units" | sort >"$build/tidy_sources"
for source in $(scripts/sources.sh '*.cpp'); do
  grep -qx "$PWD/$source" "$build/tidy_sources" ||
    { echo "tidy: nothing in $build is built from $source" >&2; exit 1; }
done
xargs -n 1 -P "$(nproc)" clang-tidy-14 -p "$build" --quiet --checks=-bugprone-suspicious-include \
  <"$build/tidy_units"
