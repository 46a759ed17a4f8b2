#!/bin/sh
# tidy.sh BUILD_DIRECTORY [FOLDER ...]: runs clang-tidy over all sources, or those of some folders.
# The directory must have been built by clang 14, whose precompiled headers it reads, with the tests
# and the benchmarks.
set -eu
cd "$(dirname "$0")/.."

build=$1
shift
commands=$build/compile_commands.json
sources=$(scripts/sources.sh '*.cpp')
if [ $# -gt 0 ]; then
  sources=$(for folder in "$@"; do echo "$sources" | grep "^$folder/"; done)
fi
for source in $sources; do
  # Without a command of its own clang-tidy would guess one and pass over what it did not find.
  grep -q "\"file\": \"$PWD/$source\"" "$commands" ||
    { echo "tidy: nothing in $build is built from $source" >&2; exit 1; }
  echo "$PWD/$source"
done >"$build/tidy_sources"
xargs -n 4 -P "$(nproc)" clang-tidy-14 -p "$build" --quiet <"$build/tidy_sources"
