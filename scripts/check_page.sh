#!/bin/sh
# check_page.sh: holds the scripts of the page of `kivdb html` against the types in their comments.
set -eu
cd "$(dirname "$0")/.."

tsc --project src/report/html
