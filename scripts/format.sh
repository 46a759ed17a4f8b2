#!/bin/sh
# Formats all sources; with --check only says which differ, and fails then.
set -eu
cd "$(dirname "$0")/.."

if [ "${1-}" = --check ]; then
  set -- --dry-run -Werror
else
  set -- -i
fi
find src tests samples docs kivdb bench fuzz \( -name '*.cpp' -o -name '*.h' \) -print0 2>/dev/null |
  xargs -0 clang-format-14 "$@"
