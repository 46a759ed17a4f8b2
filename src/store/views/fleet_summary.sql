-- runs, and median and 95th percentile of peak and leaks, by program and the label "release"
WITH {{fleet_runs}}
SELECT program, release, runs,
  MAX(CASE WHEN by_peak = runs / 2 THEN peak END) AS median_peak_bytes,
  MAX(CASE WHEN by_peak = runs * 95 / 100 THEN peak END) AS p95_peak_bytes,
  MAX(CASE WHEN by_leaked = runs / 2 THEN leaked END) AS median_leaked_bytes,
  MAX(CASE WHEN by_leaked = runs * 95 / 100 THEN leaked END) AS p95_leaked_bytes
FROM placed GROUP BY program, release, runs
