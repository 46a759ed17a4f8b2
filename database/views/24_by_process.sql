-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by process
WITH g AS (
  SELECT g.*, {{process_name}}
  FROM block_groups g
)
SELECT g.run_id, g.main_pid, g.pid, g.process_name,
{{figures}}
FROM g
GROUP BY g.run_id, g.main_pid, g.pid, g.process_name
