#!/bin/sh
# test_recorder.sh: records real programs with heaptrack and holds the traces that kivconvert makes of
# the recordings against what heaptrack_print shows of them. Builds what it needs into build/release.
set -eu
cd "$(dirname "$0")/.."

scripts/setup.sh build test recorder
cmake --preset release -DKIV_TESTS=ON >/dev/null
cmake --build --preset release --target kiv kivdb kivconvert recorded_threads
interpret=/usr/lib/heaptrack/libexec/heaptrack_interpret

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# record PROGRAM ARGUMENT...: a raw recording, and the interpreted one beside it.
record() {
  (cd "$work" && heaptrack --raw "$@") >"$work/log" 2>&1 || { cat "$work/log" >&2; exit 1; }
  raw=$(echo "$work/heaptrack.$(basename "$1")".*.raw.zst)
  zstd -dcq "$raw" | "$interpret" 2>"$work/statistics" | zstd -q >"${raw%.raw.zst}.zst"
  python3 tests/recorder/compare.py build/release "${raw%.raw.zst}.zst" "$work/statistics"
}

record /usr/bin/sqlite3 :memory: "
  CREATE TABLE sale (id INTEGER PRIMARY KEY, shop TEXT, price REAL);
  WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 4000)
    INSERT INTO sale SELECT i, 'shop ' || i % 37, i * 1.5 FROM n;
  CREATE INDEX sale_shop ON sale (shop, price);
  SELECT shop, count(*), sum(price) FROM sale GROUP BY shop ORDER BY 3 DESC LIMIT 5;"
# The command has two lines, as the recording's head has then.
record /usr/bin/python3 -c 'import decimal, json
json.loads(json.dumps({"sum": str(sum(decimal.Decimal(i) for i in range(1000)))}))'
record "$PWD"/build/release/tests/recorder/recorded_threads
