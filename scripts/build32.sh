#!/bin/sh
# build32.sh: builds everything as 32-bit x86 and runs the suite. The i386 libraries are unpacked
# below build/, not installed: next to the system's own they would need the very same versions.
set -eu
cd "$(dirname "$0")/.."

libraries=build/m32-libraries
packages="libexpat1 libexpat1-dev libabsl20220623 libabsl-dev libfmt9 libfmt-dev libgtest-dev
  libsqlite3-0 libsqlite3-dev"

if [ "$(id -u)" -ne 0 ]; then as_root=sudo; else as_root=; fi
if [ ! -e "$libraries/complete" ]; then
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

# Some kernels run no 32-bit programs; qemu runs them there, but not the programs that a test starts
# itself, so those tests are left out.
emulator=
only_in_process=
if ! /lib/ld-linux.so.2 --version >/dev/null 2>&1; then
  command -v qemu-i386 >/dev/null || $as_root apt-get install -y -qq qemu-user
  emulator=qemu-i386
  only_in_process='-E Commands|Generated|DocumentIs|Damage.(Numbers|Exhausted)|Driver|Environment|mix'
fi
LD_LIBRARY_PATH=$PWD/$libraries/usr/lib/i386-linux-gnu
export LD_LIBRARY_PATH
cmake --preset m32 -DCMAKE_CROSSCOMPILING_EMULATOR=$emulator >/dev/null
cmake --build --preset m32
ctest --preset m32 --progress $only_in_process
