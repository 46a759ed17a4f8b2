#!/bin/sh
# fuzz.sh [seconds]: runs the fuzz targets for that long together (60), starting from the corpus.
# New inputs and crashes go to build/fuzz.
set -eu
cd "$(dirname "$0")/.."

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz
targets=$(find build/fuzz/fuzz -maxdepth 1 -name '*_fuzz' ! -name 'replay_*' -perm -u+x | sort)
[ -n "$targets" ] || { echo "fuzz: no targets built" >&2; exit 1; }
each=$((${1:-60} / $(echo "$targets" | wc -l)))
for target in $targets; do
  name=$(basename "$target")
  mkdir -p "build/fuzz/found/$name"
  echo "== $name, $each seconds"
  "$target" -max_total_time="$each" -timeout=10 -rss_limit_mb=2048 -verbosity=0 \
    -print_final_stats=1 -artifact_prefix="build/fuzz/found/$name-" -dict=fuzz/kiv.dict \
    "build/fuzz/found/$name" "fuzz/corpus/$name"
done
