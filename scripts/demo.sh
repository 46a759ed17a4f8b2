#!/bin/sh
# demo.sh BUILD_DIRECTORY: analyses copies of the sample traces, shows what came out, and puts it
# into a database that answers questions; converts the sample recording and reports its trace.
set -eu

program=$(realpath "$1/src/kiv")
kivdb=$(realpath "$1/src/kivdb")
kivconvert=$(realpath "$1/src/kivconvert")
cd "$(dirname "$0")/.."
rm -rf build/demo
mkdir -p build/demo
cp -R samples/. build/demo
cd build/demo

# Rows of "table rows bytes file", one per CSV file.
tables() {
  for file in "$1"/kiv.*.csv; do
    table=${file%.*.csv}
    echo "${table##*.} $(wc -l <"$file") $(wc -c <"$file") build/demo/$file"
  done
}

show_tables() {
  awk '
    function grouped(n,   text) {
      for (text = ""; length(n) > 3; n = substr(n, 1, length(n) - 3))
        text = "," substr(n, length(n) - 2) text
      return n text
    }
    BEGIN { printf "  %-12s %10s %14s  %s\n", "table", "lines", "bytes", "file" }
    $2 > 0 { printf "  %-12s %10s %14s  %s\n", $1, grouped($2), grouped($3), $4; full++ }
    $2 == 0 { empty = empty " " $1 }
    END { if (empty) print "  empty:" empty }'
}

# The allocation ids with the highest peaks of live memory. A row of `memory` holds the id in its
# 20th field and, after the label "malid", the id'"'"'s live size, total, blocks and peak.
show_peaks() {
  awk -F ';' '
    FILENAME ~ /\.malid\./ { name[$3] = $5; next }
    { for (i = 29; i < NF && $i != "malid"; i++) {}
      if ($(i + 4) > peak[$20]) peak[$20] = $(i + 4) }
    END { for (id in peak) if (peak[id] > 0) printf "%d %s %s\n", peak[id], id, name[id] }
  ' "$1"/kiv.*.malid.*.csv "$1"/kiv.*.memory.*.csv | sort -rn | head -5 |
    awk 'BEGIN { print "  highest peaks of live memory, by allocation id:" }
         { id = $2; peak = $1; sub(/^[0-9]+ [0-9]+ /, "")
           printf "  %12.1f KiB  %8s  %s\n", peak / 1024, id, $0 }'
}

for header in */*.kivhdr; do
  dirname "$header"
done | sort -u | while read -r run; do
  input=$(cat "$run"/*.kivdat | wc -c)
  printf '\n== %s: %s trace(s), %s KiB of records\n' "$run" \
    "$(find "$run" -name '*.kivhdr' | wc -l)" "$((input / 1024))"
  echo "  $ kiv -R $run"
  start=$(date +%s%N)
  "$program" -R "$run" >"$run.out" 2>"$run.err"
  end=$(date +%s%N)
  tables "$run" | show_tables
  show_peaks "$run"
  printf '  analysed in %d ms; messages in build/demo/%s.out and .err\n' \
    "$(((end - start) / 1000000))" "$run"
  printf '  SQL import script: build/demo/%s\n' "$run"/kiv.*.sql
done

printf '\n== From traces to answers\n'
printf '  $ kivdb report MIX --top 3\n'
"$kivdb" report MIX --top 3
for run in */; do
  run=${run%/}
  [ "$run" != recordings ] || continue
  printf '\n  $ kivdb import %s -o runs.db\n' "$run"
  "$kivdb" import "$run" -o runs.db
done
printf '\n  $ kivdb trend runs.db\n'
"$kivdb" trend runs.db

printf '\n== From a recording of any program to a report\n'
printf '  $ kivconvert recordings/heaptrack.bakery.4711.zst -o bakery\n'
"$kivconvert" recordings/heaptrack.bakery.4711.zst -o bakery
printf '  $ kivdb report bakery --top 3\n'
"$kivdb" report bakery --top 3
printf '\nWhat the columns mean: docs/tables.md. What to ask: docs/database.md, kivdb views.\n'
printf 'The database: build/demo/runs.db\n'
