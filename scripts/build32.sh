#!/bin/sh
# build32.sh: builds everything as 32-bit x86 and runs the suite. The i386 libraries are unpacked
# below build/, not installed: next to the system's own they would need the very same versions.
set -eu
cd "$(dirname "$0")/.."

libraries=build/m32-libraries
packages="libexpat1 libexpat1-dev libabsl20220623 libabsl-dev libfmt9 libfmt-dev libgtest-dev
  libsqlite3-0 libsqlite3-dev"

if [ ! -e "$libraries/complete" ]; then
  if [ "$(id -u)" -ne 0 ]; then as_root=sudo; else as_root=; fi
  # An index that a mirror cannot deliver shows below, if it is one that matters.
  if ! dpkg --print-foreign-architectures | grep -qx i386; then
    $as_root dpkg --add-architecture i386
    $as_root apt-get update -qq || true
  fi
  rm -rf "$libraries"
  mkdir -p "$libraries/packages"
  (
    cd "$libraries/packages"
    for package in $packages; do
      apt-get download -qq "$package:i386"
    done
  )
  for package in "$libraries"/packages/*.deb; do
    dpkg -x "$package" "$libraries"
  done
  touch "$libraries/complete"
fi

cmake --preset m32 >/dev/null
cmake --build --preset m32
ctest --preset m32 --progress
