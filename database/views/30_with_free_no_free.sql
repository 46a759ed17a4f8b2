-- memory with an obligation to free against memory without
SELECT g.run_id, g.main_pid, g.kind,
{{figures}}
FROM block_groups g
GROUP BY g.run_id, g.main_pid, g.kind
