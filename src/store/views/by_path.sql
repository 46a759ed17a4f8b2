-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by call path
WITH RECURSIVE {{path_texts}}, s AS (
  SELECT g.trace, g.path,
{{figures}}
  FROM block_group g JOIN trace t ON t.trace = g.trace
  GROUP BY g.trace, g.path
)
SELECT {{trace}}, p.depth, p.path,
{{totals}}
FROM s JOIN trace t ON t.trace = s.trace JOIN run r ON r.run = t.run
CROSS JOIN p ON p.trace = s.trace AND p.place = s.path
