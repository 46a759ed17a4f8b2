#!/bin/sh
# The checks that are too slow for every build. Stops at the first that fails.
set -eu
cd "$(dirname "$0")/.."

start=$(date +%s)
step() { printf '\n== %s (after %s s)\n' "$*" "$(($(date +%s) - start))"; }

step "format"
scripts/format.sh --check

step "includes between the folders of src"
scripts/check_includes.sh src

step "types of the page's scripts"
scripts/check_page.sh

step "the page in a browser"
scripts/test_browser.sh -q

step "recordings of real programs"
scripts/test_recorder.sh

step "runs on ClickHouse"
scripts/test_clickhouse.sh -q

step "clang, warnings as errors, address and undefined behaviour sanitizers"
cmake --preset asan -DKIV_BENCH=ON >/dev/null
cmake --build --preset asan
ctest --preset asan --progress

step "clang-tidy"
scripts/tidy.sh build/asan

if [ -d fuzz ]; then
  step "fuzzing"
  scripts/fuzz.sh 60
fi
printf '\nchecked in %s s\n' "$(($(date +%s) - start))"
