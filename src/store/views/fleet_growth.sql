-- names of any kind that leaked more in each of the last five runs of a program than in the one before
WITH {{fleet_leaks}}, counted AS (
  SELECT program, import_order, run,
    ROW_NUMBER() OVER (PARTITION BY program ORDER BY import_order DESC) AS back,
    COUNT(*) OVER (PARTITION BY program) AS runs
  FROM (SELECT DISTINCT program, import_order, run FROM ({{fleet_traces}}))
), last AS (  -- nth of them, from 1 to 5
  SELECT program, import_order, run, 6 - back AS nth FROM counted WHERE back <= 5 AND runs >= 5
), steps AS (
  SELECT s.key, s.program, s.name, l.nth, s.leaked,
    LAG(s.leaked, 1, 0) OVER (PARTITION BY s.key, s.program, s.name ORDER BY l.nth) AS before
  FROM leaks s JOIN last l ON l.program = s.program AND l.import_order = s.import_order
), grown AS (  -- where a name is not in a run, it leaked nothing there: so only the first may lack it
  SELECT key, program, name, MAX(CASE WHEN nth = 1 THEN leaked ELSE 0 END) AS first_bytes,
    MAX(CASE WHEN nth = 5 THEN leaked ELSE 0 END) AS last_bytes
  FROM steps GROUP BY key, program, name
  HAVING (COUNT(*) = 5 OR (COUNT(*) = 4 AND MIN(nth) = 2)) AND MIN(leaked > before) = 1
)
SELECT g.key, g.program, g.name, a.run AS first_run, b.run AS last_run, g.first_bytes, g.last_bytes
FROM grown g JOIN last a ON a.program = g.program AND a.nth = 1
JOIN last b ON b.program = g.program AND b.nth = 5
ORDER BY 1, 2, 3
