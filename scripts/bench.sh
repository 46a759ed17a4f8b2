#!/bin/sh
# bench.sh [--document] [TRACE_DIRECTORY ...]: builds and runs the benchmarks: times stage by stage,
# instructions per record by record type, peak memory, reports against analyses, a recording
# converted and reported against the recorder's own evaluation; at the end what was measured against
# the limits that a change must keep. Trace directories given are measured as a whole too. With --document what it prints also replaces the latest run in
# docs/performance.md.
set -eu
cd "$(dirname "$0")/.."

if [ "${1-}" = --document ]; then
  shift
  printed=$(mktemp)
  "$0" "$@" | tee "$printed"
  awk -v printed="$printed" '
    /^```/ { inside = !inside
             if (inside) { print; while ((getline line <printed) > 0) print line; next } }
    !inside' docs/performance.md >"$printed.md"
  cat "$printed.md" >docs/performance.md
  rm -f "$printed" "$printed.md"
  exit
fi

cmake --preset bench >/dev/null
cmake --build --preset bench >&2
kiv=$PWD/build/bench/src/kiv
kivdb=$PWD/build/bench/src/kivdb
kivconvert=$PWD/build/bench/src/kivconvert
tools=$PWD/build/bench/bench
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
samples=$PWD/samples
for run in "$@"; do cp -R "$run" "$work/"; done
cp -R "$samples/SQL1" "$samples/MIX" "$work/"
cd "$work"

printf 'Date: %s\nMachine: %s, %s cores; %s\n' "$(date +%Y-%m-%d)" \
  "$(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -1)" "$(nproc)" \
  "$(sed -n 's/^PRETTY_NAME="\(.*\)"/\1/p' /etc/os-release)"
printf 'Compiler: %s\n\n' "$(g++ --version | head -1)"

"$tools/replay_bench" --benchmark_counters_tabular=true 2>/dev/null

# Instructions of one analysis of a trace: in all, or in some functions and what they call.
instructions() {
  header=$1
  shift
  for name in "$@"; do
    set -- "$@" --toggle-collect="$name"
    shift
  done
  valgrind --tool=callgrind --callgrind-out-file=/dev/null "$@" "$kiv" -H "$header" 2>&1 >/dev/null |
    sed -n 's/.*Collected *: *//p'
}
replay='kiv::kiv_reader::ReadEvents(kiv::replay_observer&)'
memory_row='kiv::kiv_tables::write_memory_row(kiv::memory_change const&)'

# Instructions of a report straight from a trace.
report_instructions() {
  valgrind --tool=callgrind --callgrind-out-file=/dev/null "$kivdb" report "$1" 2>&1 >/dev/null |
    sed -n 's/.*Collected *: *//p'
}

# per_record NAME MORE_INSTRUCTIONS FEWER RECORDS
per_record() {
  printf '  %-34s %8d\n' "$1" "$((($2 - $3) / $4))"
  last=$((($2 - $3) / $4))
}
# limit NAME MEASURED MOST: for the list at the end.
limit() {
  awk -v name="$1" -v measured="$2" -v most="$3" 'BEGIN {
    printf "  %-58s %10s %10s  %s\n", name, measured, most, measured <= most ? "kept" : "NOT KEPT" }' >>limits
}

printf '\nInstructions per record (callgrind; what start-up and preparation take is taken off)\n'
for kind in memory flow; do
  "$tools/make_trace" $kind 300000 ${kind}_few >/dev/null
  "$tools/make_trace" $kind 1000000 ${kind}_many >/dev/null
  few=$(instructions ${kind}_few/kiv.1.kivhdr)
  many=$(instructions ${kind}_many/kiv.1.kivhdr)
  per_record "$kind-heavy trace, 300k to 1M" "$many" "$few" 700000
  per_record '  report of it' "$(report_instructions ${kind}_many)" \
    "$(report_instructions ${kind}_few)" 700000
  if [ $kind = memory ]; then
    limit 'report: instructions per memory record' "$last" 1600
    "$tools/make_trace" memory 400 start >/dev/null
    start=$(instructions start/kiv.1.kivhdr)
    per_record "memory-heavy trace, all of 1M" "$many" "$start" 1000000
    limit 'kiv: instructions per memory record' "$last" 2950
  fi
done
# The records of a flow-heavy trace that are none of flow.
others() {
  instructions "$1" 'kiv::event_loop::on_malloc_wf()' 'kiv::event_loop::on_free()' \
    'kiv::event_loop::on_timestamp()' 'kiv::event_loop::on_schedule()'
}
per_record '  per flow record' "$((many - $(others flow_many/kiv.1.kivhdr)))" \
  "$((few - $(others flow_few/kiv.1.kivhdr)))" 630000
limit 'kiv: instructions per flow record' "$last" 450
for tag in a n f r S G M T C R c F Z I O i o Q q s P X B L p l b H d y D Y; do
  "$tools/make_trace" base-$tag 20000 base >/dev/null
  "$tools/make_trace" type-$tag 20000 type >/dev/null
  per_record "type $tag" "$(instructions type/kiv.1.kivhdr)" "$(instructions base/kiv.1.kivhdr)" 20000
  case $tag in R | P | L)
    per_record '  before the tables at the end' "$(instructions type/kiv.1.kivhdr "$replay")" \
      "$(instructions base/kiv.1.kivhdr "$replay")" 20000 ;;
  esac
done
for tag in F Z; do
  "$tools/make_trace" type-$tag 1000 type 0 >/dev/null
  none=$(($(instructions type/kiv.1.kivhdr)))
  "$tools/make_trace" base-$tag 1000 base 100 >/dev/null
  base=$(instructions base/kiv.1.kivhdr)
  "$tools/make_trace" base-$tag 1000 base 0 >/dev/null
  empty=$(instructions base/kiv.1.kivhdr)
  "$tools/make_trace" type-$tag 1000 type 100 >/dev/null
  full=$(instructions type/kiv.1.kivhdr)
  per_record "block given back by type $tag" "$((full - base))" "$((none - empty))" 100000

  "$tools/make_trace" base-$tag 1000 base 1 >/dev/null
  "$tools/make_trace" type-$tag 1000 type 1 >/dev/null
  base=$(instructions base/kiv.1.kivhdr)
  per_record "type $tag, id in use, with one block" "$(instructions type/kiv.1.kivhdr)" "$base" 1000
  per_record '  of these for the row of memory' "$(instructions type/kiv.1.kivhdr "$memory_row")" \
    "$(instructions base/kiv.1.kivhdr "$memory_row")" 1000
done

printf '\nWriting through the C interface\n'
writing_instructions() {
  valgrind --tool=callgrind --callgrind-out-file=/dev/null "$tools/write_records" "$1" written 2>&1 \
    >/dev/null | sed -n 's/.*Collected *: *//p'
}
per_record 'instructions per record' "$(writing_instructions 500000)" \
  "$(writing_instructions 100000)" 400000
limit 'libkivtrace: instructions per record' "$last" 200
"$tools/write_records" 10000000 written
rm -r written

printf '\nPeak memory (operating system) and whole runs\n'
printf '  %-12s %9s %12s %10s %10s %8s %11s\n' trace records 'live blocks' 'data, KiB' 'peak, KiB' \
  'wall, s' 'tables, MB'
whole_run() {
  data=$(($(cat "$1"/*.kivdat | wc -c) / 1024))
  measured=$("$tools/peak_memory" "$kiv" -R "$1")
  peak=${measured% *}
  records=$(cat "$1"/kiv.*.memory.*.csv "$1"/kiv.*.flow.*.csv | wc -l)
  made=$(cat "$1"/kiv.*.memory.*.csv | cut -d ';' -f 4 | grep -c '[an]' || true)
  ended=$(cat "$1"/kiv.*.freemem.*.csv | cut -d ';' -f 5 | grep -c '[fFZ]' || true)
  live=$((made - ended))
  printf '  %-12s %9d %12d %10d %10d %8s %11d\n' "$1" "$records" "$live" "$data" "$peak" \
    "${measured#* }" "$(($(cat "$1"/*.csv | wc -c) / 1000000))"
}
whole_run memory_few
few_live=$live few_peak=$peak
whole_run memory_many
limit "kiv: KiB, $live live blocks" "$peak" 16384
live_many=$live
per_block=$(((peak - few_peak) * 1024 / (live - few_live)))
whole_run flow_many
for run in SQL1 MIX "$@"; do whole_run "$(basename "$run")"; done
printf '  bytes per further live block, memory-heavy: %d\n' "$per_block"

# The middle one of so many numbers, one a line.
median() { sort -n | awk '{ all[NR] = $1 } END { print all[int((NR + 1) / 2)] }'; }

# Report and analysis in turn, so that both see the machine at the same speed.
printf '\nReports straight from a trace (medians of 11 pairs, files in the page cache)\n'
printf '  %-12s %10s %10s %10s %12s\n' trace 'report, s' 'kiv -R, s' ratio 'report, KiB'
compare_report() {
  for pair in 0 1 2 3 4 5 6 7 8 9 10 11; do
    report=$("$tools/peak_memory" "$kivdb" report "$1")
    analysis=$("$tools/peak_memory" "$kiv" -R "$1")
    rm -f "$1"/*.csv "$1"/*.sql
    [ $pair = 0 ] || echo "$report $analysis"
  done >pairs
  ratio=$(awk '{ printf "%.3f\n", $2 / $4 }' pairs | median)
  peak=$(cut -d ' ' -f 1 pairs | median)
  printf '  %-12s %10s %10s %10s %12d\n' "$1" "$(cut -d ' ' -f 2 pairs | median)" \
    "$(cut -d ' ' -f 4 pairs | median)" "$ratio" "$peak"
}
compare_report memory_many
limit "report: KiB, $live_many live blocks" "$peak" 49152
compare_report flow_many
limit 'report against kiv: wall, flow-heavy' "$ratio" 0.7
for run in SQL1 MIX; do compare_report $run; done
for run in "$@"; do
  compare_report "$(basename "$run")"
  limit "report against kiv: wall, $(basename "$run")" "$ratio" 0.6
done

printf '\nReports from a database (medians of 11 runs)\n'
printf '  %-12s %10s %14s\n' trace 'report, s' 'database, KiB'
for run in memory_many flow_many SQL1 "$@"; do
  name=$(basename "$run")
  "$kivdb" import "$name" -o "$name.db" >/dev/null
  for turn in 1 2 3 4 5 6 7 8 9 10 11; do "$tools/peak_memory" "$kivdb" report "$name.db"; done >runs
  wall=$(cut -d ' ' -f 2 runs | median)
  printf '  %-12s %10s %14d\n' "$name" "$wall" "$(($(wc -c <"$name.db") / 1024))"
  case $name in
    memory_many | flow_many | SQL1) ;;
    *) limit "report of a database: seconds, $name" "$wall" 0.05 ;;
  esac
done

if command -v heaptrack >/dev/null; then
  printf '\nA recording of a program that allocates all the time (medians of 5 turns)\n'
  heaptrack -o recording "$tools/busy_program" 11000 >/dev/null 2>&1
  for turn in 1 2 3 4 5; do
    rm -rf recorded
    echo "$("$tools/peak_memory" "$kivconvert" recording.zst -o recorded --pid 1)" \
      "$("$tools/peak_memory" "$kivdb" report recorded)" \
      "$("$tools/peak_memory" "$(command -v heaptrack_print)" -f recording.zst)"
  done >turns
  printf '  %-34s %8d\n' 'allocations and frees' "$(zstd -dc recording.zst | grep -c '^[+-]')"
  printf '  %-34s %8d\n' 'recording, KiB' "$(($(wc -c <recording.zst) / 1024))"
  printf '  %-34s %8d\n' 'trace of it, KiB' "$(($(cat recorded/* | wc -c) / 1024))"
  place=1
  for step in kivconvert 'kivdb report' heaptrack_print; do
    printf '  %-34s %8s s %8d KiB\n' "$step" "$(cut -d ' ' -f $((place + 1)) turns | median)" \
      "$(cut -d ' ' -f $place turns | median)"
    place=$((place + 2))
  done
  limit 'kivconvert and report against heaptrack_print: wall' \
    "$(awk '{ printf "%.2f\n", ($2 + $4) / $6 }' turns | median)" 2
  limit 'report of the recording against heaptrack_print: wall' \
    "$(awk '{ printf "%.2f\n", $4 / $6 }' turns | median)" 1
fi

printf '\nLimits                                                       measured    at most\n'
cat limits
