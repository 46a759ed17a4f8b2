-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by allocation id
WITH g AS (
  SELECT g.*, {{id_name}}
  FROM block_groups g
)
SELECT g.run_id, g.main_pid, g.id_name,
{{figures}}
FROM g
GROUP BY g.run_id, g.main_pid, g.id_name
