-- the first run in which a name of any kind leaked, and the last one
SELECT key, program, name, argMin(run, import) AS first_run, argMin(leaked, import) AS leaked_bytes,
  toInt64(count()) AS runs, argMax(run, import) AS last_run
FROM (
  SELECT key, import, run, program, name, sum(leaked_bytes) AS leaked
  FROM name_sum_everywhere WHERE {{stored}} AND leaked_bytes != 0
  GROUP BY key, import, run, program, name
)
GROUP BY key, program, name
ORDER BY key, program, name
