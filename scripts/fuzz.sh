#!/bin/sh
# fuzz.sh [SECONDS [TARGET...]]: runs the fuzz targets for that long together (60), starting from the
# corpus.
# New inputs go to build/fuzz/found. An input that crashes, takes too long or too much memory is
# kept beside them, and the script fails; it belongs into fuzz/corpus once the fault is mended.
set -eu
cd "$(dirname "$0")/.."

seconds=${1:-60}
[ $# -eq 0 ] || shift
targets=${*:-trace_fuzz header_fuzz recording_fuzz}
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --target $targets
seconds=$((seconds / $(echo "$targets" | wc -w)))
for target in $targets; do
  found=build/fuzz/found/$target
  mkdir -p "$found"
  echo "== $target"
  # Inputs are some kilobytes: whatever asks for more memory than this took a number at its word.
  "build/fuzz/fuzz/$target" -max_total_time="$seconds" -timeout=60 -malloc_limit_mb=256 \
    -max_len=8192 -seed=1 -verbosity=0 -print_final_stats=1 -dict=fuzz/kiv.dict \
    -artifact_prefix="$found-" "$found" "fuzz/corpus/$target"
done
