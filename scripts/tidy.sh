#!/bin/sh
# tidy.sh BUILD_DIRECTORY: runs clang-tidy over all sources. The directory must have been built by
# clang 14, with the tests and the benchmarks. Sources that it compiles together are checked
# together, which takes a fraction of the time.
set -eu
cd "$(dirname "$0")/.."

build=$1
sed -n 's/^ *"file": "\(.*\)".*/\1/p' "$build/compile_commands.json" | sort -u >"$build/all_units"
while read -r unit; do
  included=$(sed -n 's/^#include "\(.*\.c\(pp\)\?\)"/\1/p' "$unit")
  case $unit in
    */Unity/unity_*) echo "$included" >&3 && echo "$unit" ;;
    "$PWD/$build"/*) ;; # generated
    *) echo "$unit" >&3 && echo "$unit" ;;
  esac
done <"$build/all_units" >"$build/tidy_units" 3>"$build/tidy_sources"
# What is not compiled there would not be checked.
for source in $(scripts/sources.sh '*.c' '*.cpp'); do
  grep -qx "$PWD/$source" "$build/tidy_sources" ||
    { echo "tidy: nothing in $build is built from $source" >&2; exit 1; }
done

# check CHECKS: the units whose names come in.
check() { xargs -n 1 -P "$(nproc)" clang-tidy-14 -p "$build" --quiet --checks="$1"; }
tests="^$PWD/\($build/\)\?tests/"
grep -v "$tests" "$build/tidy_units" | check -bugprone-suspicious-include
# How fast a test is does not matter.
grep "$tests" "$build/tidy_units" | check '-bugprone-suspicious-include,-performance-*'
