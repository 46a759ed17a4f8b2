#!/bin/sh
# test_browser.sh [PYTEST ARGUMENT...]: opens pages of `kivdb html` in a browser and holds what they
# show against `kivdb report --json`. Builds what it needs into build/release.
set -eu
cd "$(dirname "$0")/.."

scripts/setup.sh build test browser
cmake --preset release -DKIV_TESTS=ON >/dev/null
cmake --build --preset release --target kivdb make_page_traces
# The packages are those of Debian's own interpreter.
KIV_BUILD=$PWD/build/release TZ=UTC exec /usr/bin/python3 -B -m pytest -p no:cacheprovider \
  tests/browser "$@"
