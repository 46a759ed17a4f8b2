#!/bin/sh
# readme_example.sh SAMPLES DOCUMENT...: runs the commands of the documents' examples, the lines that
# begin with "$ ", with the kiv and kivdb of PATH and the traces of the folder SAMPLES, and compares
# what they print with what the document shows: all of it, or where it has a line "[...]" the lines
# that it does show, in any order, since off a terminal the two streams mix in another one. The time
# that a run took ("0.1 s" at a line's end) may differ. Each document starts anew.
set -eu

samples=$(realpath "$1")
if [ $# -gt 2 ]; then
  shift
  faults=0
  for document in "$@"; do
    "$0" "$samples" "$document" || faults=$((faults + 1))
  done
  [ "$faults" -eq 0 ]
  exit
fi
document=$(realpath "$2")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp -R "$samples" "$work/samples"
cd "$work"

# One script of all commands, since `cd` and `export` hold for the later ones, and a file with the
# expected output for each. A command goes on over line ends while a quote is open, or behind a backslash.
awk '
  /^```/ { in_block = !in_block; shown = 0; next }
  !in_block { next }
  unfinished || /^\$ / {
    if (!unfinished) {
      close(expected)
      expected = sprintf("%s.expected", ++count)
      printf "" >expected
      command = ""
    }
    command = command (unfinished ? "\n" : "") (unfinished ? $0 : substr($0, 3))
    unfinished = gsub(/\047/, "&", command) % 2 || command ~ /\\$/
    if (!unfinished) {
      gsub("/tmp/try", "../try", command)
      printf "{\n%s\n} >\"$work/%d.actual\" 2>&1 || echo \"status $?\" >>\"$work/%d.actual\"\n",
        command, count, count >"commands"
      printf "%s\n", command >(count ".command")
    }
    shown = 1
    next
  }
  shown { print >expected }
' "$document"
[ -e commands ] || { echo "readme_example: $document has no command" >&2; exit 1; }
mkdir here
mv samples here/
(cd here && work=$work sh ../commands)

faults=0
count=0
while [ -e "$((count + 1)).command" ]; do
  count=$((count + 1))
  for side in expected actual; do
    sed 's/[0-9.]* s$/T s/' "$count.$side" >"$count.$side.plain"
  done
  if grep -qxF '[...]' "$count.expected"; then
    awk 'NR == FNR { printed[$0]; next } $0 != "[...]" && !($0 in printed) { exit 1 }' \
      "$count.actual.plain" "$count.expected.plain" && continue
  else
    cmp -s "$count.expected.plain" "$count.actual.plain" && continue
  fi
  faults=$((faults + 1))
  printf '\n$ %s\n' "$(cat "$count.command")"
  diff -u "$count.expected.plain" "$count.actual.plain" || true
done
echo "$(basename "$document"): $count commands, $faults of them print something else"
[ "$faults" -eq 0 ]
