-- runs, and median and 95th percentile of peak and leaks, by program and the label "release"
WITH one AS (  -- of a run and a program
  SELECT import_order, run, program, SUM(peak_bytes) AS peak, SUM(leaked_bytes) AS leaked
  FROM ({{fleet_traces}}) GROUP BY import_order, run, program
), named AS (
  SELECT o.program, COALESCE(l.value, '') AS release, o.peak, o.leaked
  FROM one o LEFT JOIN run_label l ON l.run = o.import_order AND l.key = 'release'
), placed AS (
  SELECT program, release, peak, leaked,
    COUNT(*) OVER (PARTITION BY program, release) AS runs,
    ROW_NUMBER() OVER (PARTITION BY program, release ORDER BY peak) - 1 AS by_peak,
    ROW_NUMBER() OVER (PARTITION BY program, release ORDER BY leaked) - 1 AS by_leaked
  FROM named
)
SELECT program, release, runs,
  MAX(CASE WHEN by_peak = runs / 2 THEN peak END) AS median_peak_bytes,
  MAX(CASE WHEN by_peak = runs * 95 / 100 THEN peak END) AS p95_peak_bytes,
  MAX(CASE WHEN by_leaked = runs / 2 THEN leaked END) AS median_leaked_bytes,
  MAX(CASE WHEN by_leaked = runs * 95 / 100 THEN leaked END) AS p95_leaked_bytes
FROM placed GROUP BY program, release, runs
