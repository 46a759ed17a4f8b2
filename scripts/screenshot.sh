#!/bin/sh
# screenshot.sh: makes docs/report.png, the picture of the README: the page of the sample SQL1.
set -eu
cd "$(dirname "$0")/.."

scripts/setup.sh build test browser
scripts/build.sh
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
TZ=UTC build/release/src/kivdb html samples/SQL1 -o "$work/page.html" >/dev/null
/usr/bin/python3 -B tests/browser/screenshot.py "$work/page.html" "$work/page.png"
size=$(wc -c <"$work/page.png")
[ "$size" -le 200000 ] || {
  echo "screenshot: $size bytes are more than a README should load" >&2
  exit 1
}
cp "$work/page.png" docs/report.png
