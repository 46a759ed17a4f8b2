-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by caller and callee of a process
WITH g AS (
  SELECT g.*, {{process_name}}, {{caller}}, {{callee}}
  FROM block_groups g
)
SELECT g.run_id, g.main_pid, g.pid, g.process_name, g.caller, g.callee,
{{figures}}
FROM g
GROUP BY g.run_id, g.main_pid, g.pid, g.process_name, g.caller, g.callee
