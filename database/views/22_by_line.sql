-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by source line
WITH g AS (
  SELECT g.*, {{source_line}}
  FROM block_groups g
)
SELECT g.run_id, g.main_pid, g.source_line,
{{figures}}
FROM g
GROUP BY g.run_id, g.main_pid, g.source_line
