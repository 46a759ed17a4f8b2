#!/bin/sh
# try_package.sh: unpacks the Debian package of `make package` into a temporary folder and runs
# the examples of the documents with the programs in it.
# try_package.sh --install: installs the package and runs them with the installed programs.
set -eu
cd "$(dirname "$0")/.."

package=$(echo "$PWD"/build/release/package/*.deb)
root=
if [ "${1-}" = --install ]; then
  if [ "$(id -u)" -ne 0 ]; then as_root=sudo; else as_root=; fi
  $as_root apt-get install -y -qq --reinstall --no-install-recommends "$package"
else
  root=$(mktemp -d)
  trap 'rm -rf "$root"' EXIT
  dpkg -x "$package" "$root"
  PATH=$root/usr/bin:$PATH
fi
dpkg -I "$package" | grep -E '^ (Package|Version|Architecture|Depends|Installed-Size):'
kivdb --version
for page in kiv kivdb; do
  gzip -dc "$root/usr/share/man/man1/$page.1.gz" | head -1
done
scripts/readme_example.sh "$root/usr/share/kiv/samples" README.md docs/tables-by-hand.md \
  docs/exports.md
