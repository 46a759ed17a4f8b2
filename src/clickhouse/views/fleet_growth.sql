-- names of any kind that leaked more in each of the last five runs of a program than in the one before
SELECT key, program, name, runs[1].2 AS first_run, runs[-1].2 AS last_run,
  if(length(steps) = 5, steps[1].2, toInt64(0)) AS first_bytes, steps[-1].2 AS last_bytes
FROM (
  SELECT item.1 AS key, program, item.2 AS name, any(all_runs) AS runs,
    arraySort(groupArray((item.3, item.4))) AS steps
  FROM (
    SELECT program, all_runs, arrayJoin(items) AS item
    FROM (
      SELECT program, arraySort(groupUniqArray((import, run))) AS all_runs,
        groupArray((key, name, import, leaked)) AS items
      FROM (
        SELECT program, key, name, import, run, sum(bytes) AS leaked
        FROM (
          SELECT program, key, name, import, run, leaked_bytes AS bytes
          FROM name_sum_everywhere WHERE {{stored}} AND {{last_runs}}
          UNION ALL
          SELECT program, '' AS key, '' AS name, import, run, toInt64(0) AS bytes
          FROM trace_everywhere WHERE {{stored}} AND {{last_runs}}
        )
        GROUP BY program, key, name, import, run
      )
      GROUP BY program
    )
  )
  WHERE item.4 != 0
  GROUP BY key, program, name
)
WHERE (length(steps) = 5 OR (length(steps) = 4 AND steps[1].1 != runs[1].1))
  AND arrayAll((a, b) -> b.2 > a.2, arrayPopBack(steps), arrayPopFront(steps))
ORDER BY key, program, name
