#!/bin/sh
# build.sh: builds what the package of the release preset holds.
# build.sh --all: builds the tests and all else too.
set -eu
cd "$(dirname "$0")/.."

if [ "${1-}" = --all ]; then
  cmake --preset release -DKIV_TESTS=ON >/dev/null
  exec cmake --build --preset release
fi
# A build directory that has the tests keeps them; the programs alone need no test library.
[ -e build/release/build.ninja ] || cmake --preset release -DKIV_TESTS=OFF >/dev/null
exec cmake --build --preset release --target kiv kivdb kivconvert kivtrace manual_pages
