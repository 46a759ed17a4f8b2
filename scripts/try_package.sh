#!/bin/sh
# try_package.sh: unpacks the Debian package of `make package` into a temporary folder and runs
# the examples of the documents with the programs in it, and a program in C with its library.
# try_package.sh --install: installs the package and does that with what is installed.
set -eu
cd "$(dirname "$0")/.."

package=$(echo "$PWD"/build/release/package/*.deb)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
root=
if [ "${1-}" = --install ]; then
  if [ "$(id -u)" -ne 0 ]; then as_root=sudo; else as_root=; fi
  $as_root apt-get install -y -qq --reinstall --no-install-recommends "$package"
else
  root=$work/root
  dpkg -x "$package" "$root"
  PATH=$root/usr/bin:$PATH
  PKG_CONFIG_PATH=$root/usr/lib/pkgconfig
  LD_LIBRARY_PATH=$root/usr/lib
  export PKG_CONFIG_PATH LD_LIBRARY_PATH
fi
dpkg -I "$package" | grep -E '^ (Package|Version|Architecture|Depends|Installed-Size):'
kivdb --version
kivconvert --version
for page in kiv kivdb kivconvert; do
  gzip -dc "$root/usr/share/man/man1/$page.1.gz" | head -1
done
scripts/readme_example.sh "$root/usr/share/kiv/samples" README.md docs/tables-by-hand.md \
  docs/exports.md
cc -o "$work/write_trace" "$root/usr/share/kiv/samples/write_trace.c" -pthread \
  $(pkg-config --cflags --libs kivtrace)
cd "$work"
./write_trace R1 R1
kivdb report R1 --of leaked --by line | grep 'orders.c:31'
