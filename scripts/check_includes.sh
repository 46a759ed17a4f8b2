#!/bin/sh
# check_includes.sh SRC: holds the #include lines below the folder SRC against SRC/layers.txt, where
# a line "folder: others" names the folders whose headers the folder may include besides its own.
# A line may only name folders of lines above it, so no circle can be declared. Files directly in
# SRC may include any folder, and no folder may include them.
set -eu

src=$1
(
  cd "$src"
  find . -mindepth 1 -maxdepth 1 -type d | sed 's|^\./|folder |'
  find . -maxdepth 1 -name '*.h' | sed 's|^\./|top |'
  find . -mindepth 2 \( -name '*.h' -o -name '*.cpp' \) -exec \
    grep -Hn '^[[:space:]]*#[[:space:]]*include[[:space:]]*"' {} + |
    sed 's|^\./|include |; s|#[[:space:]]*include[[:space:]]*"\([^"]*\)".*| \1|'
) | awk -v table="$src/layers.txt" '
  function fault(text) { print "includes: " text; faults++ }
  BEGIN {
    while ((status = (getline line < table)) > 0) {
      sub(/#.*/, "", line)
      if (line ~ /^[ \t]*$/) continue
      folder = line
      sub(/[ \t]*:.*/, "", folder)
      if (line !~ /:/ || folder in declared) {
        fault(table ": not \"folder: others\", or twice: " line)
        continue
      }
      sub(/^[^:]*:/, "", line)
      count = split(line, others, " ")
      for (i = 1; i <= count; i++) {
        if (!(others[i] in declared)) fault(table ": " folder " names " others[i] ", not above it")
        allowed[folder, others[i]]
      }
      declared[folder]
    }
    if (status < 0) fault(table ": cannot be read")
  }
  $1 == "folder" && !($2 in declared) { fault("the folder " $2 " is not in " table) }
  $1 == "top" { top[$2] }
  $1 == "include" {
    checked++
    from = $2
    sub(/\/.*/, "", from)
    place = $2
    sub(/:[ \t]*$/, "", place)
    header = $3
    if (header ~ /\//) {
      to = header
      sub(/\/.*/, "", to)
      if (to != from && !((from, to) in allowed))
        fault(place ": " from " may not include " header)
    } else if (header in top) {
      fault(place ": " from " may not include " header " of the folder above")
    }
  }
  END {
    if (!checked) fault("nothing to check")
    if (faults) { print "includes: " faults " faults"; exit 1 }
    print checked " includes follow " table
  }'
