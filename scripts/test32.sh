#!/bin/sh
# test32.sh: builds kiv as 32-bit x86 and runs its suite. The i386 libraries are fetched by an
# apt of their own below build/ and unpacked there: the system gets no foreign architecture, no
# other package lists, and no libraries next to its own.
set -eu
cd "$(dirname "$0")/.."

libraries=$PWD/build/m32-libraries
packages="libexpat1 libexpat1-dev libabsl20220623 libabsl-dev libfmt9 libfmt-dev libgtest-dev"

if [ ! -e "$libraries/complete" ]; then
  apt=$libraries/apt
  rm -rf "$libraries"
  mkdir -p "$apt/lists/partial" "$apt/cache/archives/partial" "$apt/packages"
  : >"$apt/status"
  # Where packages come from and which keys are trusted stays the system's.
  cat >"$apt/apt.conf" <<END
APT::Architecture "i386";
APT::Architectures { "i386"; };
Dir::State "$apt";
Dir::State::status "$apt/status";
Dir::Cache "$apt/cache";
END
  export APT_CONFIG="$apt/apt.conf"
  # A list that cannot be fetched shows below, if it is one that matters.
  apt-get update -qq || true
  (cd "$apt/packages" && apt-get download -qq $packages)
  for package in "$apt"/packages/*.deb; do
    dpkg -x "$package" "$libraries"
  done
  unset APT_CONFIG
  rm -rf "$apt"
  touch "$libraries/complete"
fi

# Some kernels run no 32-bit programs; qemu runs them there, but not the programs that a test starts
# itself, so those tests are left out.
emulator=
only_in_process=
if ! /lib/ld-linux.so.2 --version >/dev/null 2>&1; then
  scripts/setup.sh emulate32
  emulator=qemu-i386
  only_in_process='-E DocumentIs|Damage.(Numbers|Exhausted)|Driver|Environment|SampleProgram|SampleShows|TwoRuns'
fi
LD_LIBRARY_PATH=$libraries/usr/lib/i386-linux-gnu
export LD_LIBRARY_PATH
cmake --preset m32 -DCMAKE_CROSSCOMPILING_EMULATOR=$emulator >/dev/null
cmake --build --preset m32
ctest --preset m32 --progress $only_in_process
