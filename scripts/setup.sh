#!/bin/sh
# setup.sh SET...: installs those Debian packages of the named sets that are missing, and nothing
# when all are there. A set is a line of this table.
set -eu

sets='
make         make
build        g++ cmake ninja-build libexpat1-dev libabsl-dev libfmt-dev libsqlite3-dev libcli11-dev libre2-dev node-d3 pkg-config libprotobuf-dev protobuf-compiler zlib1g-dev libzstd-dev libcurl4-openssl-dev
test         libgtest-dev python3
bench        libbenchmark-dev valgrind heaptrack zstd
format       clang-format-14 git
check        clang-14 libclang-rt-14-dev clang-tidy-14 libbenchmark-dev node-typescript
recorder     sqlite3 heaptrack zstd
browser      chromium chromium-driver python3-pytest python3-selenium fonts-dejavu-core
test32       g++-multilib
emulate32    qemu-user
clickhouse   clickhouse-server python3-pytest
package      dpkg-dev file
'

packages=
for set in "$@"; do
  found=$(echo "$sets" | sed -n "s/^$set  *//p")
  [ -n "$found" ] || {
    echo "setup: no set of packages is called $set; there are:" >&2
    echo "$sets" >&2
    exit 2
  }
  packages="$packages $found"
done

if ! command -v dpkg-query >/dev/null; then
  echo "setup: not a Debian system; needed are the likes of:$packages" >&2
  exit 0
fi

missing=
for package in $packages; do
  case $(dpkg-query -W -f='${Status}' "$package" 2>/dev/null || true) in
    *" installed") ;;
    *) missing="$missing $package" ;;
  esac
done
[ -n "$missing" ] || exit 0

echo "setup: installing$missing"
as_root=
if [ "$(id -u)" -ne 0 ]; then
  as_root=$(command -v sudo) || {
    echo "setup: run as root: apt-get install$missing" >&2
    exit 1
  }
fi
export DEBIAN_FRONTEND=noninteractive
# A list that cannot be refreshed need not matter: the installation decides.
$as_root apt-get update -qq || true
$as_root apt-get install -y -qq --no-install-recommends $missing >/dev/null
