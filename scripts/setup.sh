#!/bin/sh
# Installs the Debian packages that are missing; does nothing when all are there.
# setup.sh: for building and testing; setup.sh --checks: also for the slow checks.
set -eu

packages="g++ make cmake ninja-build pkg-config
  libexpat1-dev libabsl-dev libfmt-dev libgtest-dev libbenchmark-dev libsqlite3-dev libcli11-dev"
if [ "${1-}" = --checks ]; then
  packages="$packages g++-multilib clang-14 clang-tidy-14 clang-format-14 libclang-rt-14-dev"
fi

if ! command -v dpkg-query >/dev/null; then
  echo "setup: not a Debian system; needed are the likes of:" $packages >&2
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
