-- the first run in which a name of any kind leaked, and the last one
WITH {{fleet_leaks}}, placed AS (
  SELECT key, program, name, run, leaked,
    ROW_NUMBER() OVER (PARTITION BY key, program, name ORDER BY import_order) AS nth,
    COUNT(*) OVER (PARTITION BY key, program, name) AS runs
  FROM leaks
)
SELECT key, program, name, MAX(CASE WHEN nth = 1 THEN run END) AS first_run,
  MAX(CASE WHEN nth = 1 THEN leaked END) AS leaked_bytes, runs,
  MAX(CASE WHEN nth = runs THEN run END) AS last_run
FROM placed GROUP BY key, program, name, runs
ORDER BY 1, 2, 3
