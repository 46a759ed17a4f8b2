#!/bin/sh
# tidy.sh BUILD_DIRECTORY: runs clang-tidy over all sources. The directory must have been built by
# clang 14, whose precompiled headers it reads, with the tests and the benchmarks.
set -eu
cd "$(dirname "$0")/.."

commands=$1/compile_commands.json
sources=$(scripts/sources.sh '*.cpp')
for source in $sources; do
  # Without a command of its own clang-tidy would guess one and pass over what it did not find.
  grep -q "\"file\": \"$PWD/$source\"" "$commands" ||
    { echo "tidy: nothing in $1 is built from $source" >&2; exit 1; }
  echo "$PWD/$source"
done >"$1/tidy_sources"
xargs -n 4 -P "$(nproc)" clang-tidy-14 -p "$1" --quiet <"$1/tidy_sources"
