-- runs with more than twice the median of their program and the label "release"
SELECT program, release, run, found.1 AS measure, found.2 AS bytes, found.3 AS median_bytes
FROM (
  SELECT program, release, item.1 AS run, arrayJoin([('leaked', item.3, median_leaked),
    ('peak', item.2, median_peak)]) AS found
  FROM (
    SELECT program, release, median_peak, median_leaked, arrayJoin(items) AS item
    FROM (
      SELECT program, release, groupArray((run, peak, leaked)) AS items,
        arraySort(groupArray(peak))[toInt64(intDiv(count() * 50, 100)) + 1] AS median_peak,
        arraySort(groupArray(leaked))[toInt64(intDiv(count() * 50, 100)) + 1] AS median_leaked
      FROM (
        SELECT import, run, program, release, sum(peak_bytes) AS peak,
          sum(total_leaked_bytes) AS leaked
        FROM trace_everywhere WHERE {{stored}} GROUP BY import, run, program, release
      )
      GROUP BY program, release
    )
  )
)
WHERE bytes > 2 * median_bytes
ORDER BY program, release, run, measure
