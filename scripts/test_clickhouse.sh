#!/bin/sh
# test_clickhouse.sh [PYTEST ARGUMENT...]: loads runs into two servers and holds what kivdb says of them
# against what it says of a file. Builds what it needs into build/release.
set -eu
cd "$(dirname "$0")/.."

scripts/setup.sh build test clickhouse
cmake --preset release -DKIV_TESTS=ON >/dev/null
cmake --build --preset release --target kiv kivdb make_page_traces make_fleet
KIV_BUILD=$PWD/build/release TZ=UTC exec /usr/bin/python3 -B -m pytest -p no:cacheprovider \
  tests/clickhouse "$@"
