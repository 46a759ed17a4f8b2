#!/bin/sh
# Packs what the release build has made into build/release/package/.
set -eu
cd "$(dirname "$0")/../build/release"

rm -rf package
cpack >cpack.log 2>&1 || { cat cpack.log; exit 1; }
rm -rf package/_CPack_Packages
ls "$PWD"/package/*.deb
