#!/bin/sh
# bench.sh [TRACE_DIRECTORY ...]: builds and runs the benchmarks: times stage by stage, instructions
# per record by record type, peak memory. Trace directories given are measured as a whole too.
set -eu
cd "$(dirname "$0")/.."

cmake --preset bench >/dev/null
cmake --build --preset bench
kiv=$PWD/build/bench/src/kiv
tools=$PWD/build/bench/bench
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
samples=$PWD/samples
for run in "$@"; do cp -R "$run" "$work/"; done
cp -R "$samples/SQL1" "$samples/MIX" "$work/"
cd "$work"

printf 'Machine: %s, %s cores; %s\n' \
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

# per_record NAME MORE_INSTRUCTIONS FEWER RECORDS
per_record() { printf '  %-34s %8d\n' "$1" "$((($2 - $3) / $4))"; }

printf '\nInstructions per record (callgrind; what start-up and preparation take is taken off)\n'
for kind in memory flow; do
  "$tools/make_trace" $kind 300000 ${kind}_few >/dev/null
  "$tools/make_trace" $kind 1000000 ${kind}_many >/dev/null
  few=$(instructions ${kind}_few/kiv.1.kivhdr)
  many=$(instructions ${kind}_many/kiv.1.kivhdr)
  per_record "$kind-heavy trace, 300k to 1M" "$many" "$few" 700000
  if [ $kind = memory ]; then
    "$tools/make_trace" memory 400 start >/dev/null
    start=$(instructions start/kiv.1.kivhdr)
    per_record "memory-heavy trace, all of 1M" "$many" "$start" 1000000
  fi
done
# The records of a flow-heavy trace that are none of flow.
others() {
  instructions "$1" 'kiv::event_loop::on_malloc_wf()' 'kiv::event_loop::on_free()' \
    'kiv::event_loop::on_timestamp()' 'kiv::event_loop::on_schedule()'
}
per_record '  per flow record' "$((many - $(others flow_many/kiv.1.kivhdr)))" \
  "$((few - $(others flow_few/kiv.1.kivhdr)))" 630000
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
few_live=$live few_above=$((peak - data))
whole_run memory_many
per_block=$((((peak - data) - few_above) * 1024 / (live - few_live)))
whole_run flow_many
for run in SQL1 MIX "$@"; do whole_run "$(basename "$run")"; done
printf '  bytes above the data file per further live block, memory-heavy: %d\n' "$per_block"
