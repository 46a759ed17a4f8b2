#!/bin/sh
# sources.sh PATTERN...: our own files of these patterns, one a line: those that git knows and new
# ones that it does not ignore. So a new folder is covered without being named anywhere.
set -eu
cd "$(dirname "$0")/.."

files=$(git ls-files --cached --others --exclude-standard --deduplicate -- "$@")
for file in $files; do
  if [ -e "$file" ]; then echo "$file"; fi
done
