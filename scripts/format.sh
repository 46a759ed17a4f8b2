#!/bin/sh
# Formats all sources; with --check only says which differ, and fails then.
set -eu
cd "$(dirname "$0")/.."

if [ "${1-}" = --check ]; then
  set -- --dry-run -Werror
else
  set -- -i
fi
files=$(scripts/sources.sh '*.c' '*.cpp' '*.h' '*.js')
clang-format-14 "$@" $files
