-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by SQL statement
WITH g AS (
  SELECT g.*, {{query_text}}
  FROM block_groups g
)
SELECT g.run_id, g.main_pid, g.query_text,
{{figures}}
FROM g
GROUP BY g.run_id, g.main_pid, g.query_text
