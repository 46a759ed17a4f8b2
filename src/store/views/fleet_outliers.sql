-- runs with more than twice the median of their program and the label "release"
WITH {{fleet_runs}}, medians AS (
  SELECT program, release, MAX(CASE WHEN by_peak = runs / 2 THEN peak END) AS peak,
    MAX(CASE WHEN by_leaked = runs / 2 THEN leaked END) AS leaked
  FROM placed GROUP BY program, release
)
SELECT p.program, p.release, p.run, 'leaked' AS measure, p.leaked AS bytes,
  m.leaked AS median_bytes
FROM placed p JOIN medians m ON m.program = p.program AND m.release = p.release
WHERE p.leaked > 2 * m.leaked
UNION ALL
SELECT p.program, p.release, p.run, 'peak' AS measure, p.peak AS bytes, m.peak AS median_bytes
FROM placed p JOIN medians m ON m.program = p.program AND m.release = p.release
WHERE p.peak > 2 * m.peak
ORDER BY 1, 2, 3, 4
