-- runs, and median and 95th percentile of peak and leaks, by program and the label "release"
SELECT program, release, toInt64(count()) AS runs,
  arraySort(groupArray(peak))[toInt64(intDiv(count() * 50, 100)) + 1] AS median_peak_bytes,
  arraySort(groupArray(peak))[toInt64(intDiv(count() * 95, 100)) + 1] AS p95_peak_bytes,
  arraySort(groupArray(leaked))[toInt64(intDiv(count() * 50, 100)) + 1] AS median_leaked_bytes,
  arraySort(groupArray(leaked))[toInt64(intDiv(count() * 95, 100)) + 1] AS p95_leaked_bytes
FROM (
  SELECT import, run, program, release, sum(peak_bytes) AS peak, sum(total_leaked_bytes) AS leaked
  FROM trace_everywhere WHERE {{stored}} GROUP BY import, run, program, release
)
GROUP BY program, release
ORDER BY program, release
