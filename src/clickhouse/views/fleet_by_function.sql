-- the groups of blocks of all runs by innermost function, with program and host; several rows may have one name
SELECT run, import AS import_order, program, host, function_name AS name,
{{fleet_figures}}
FROM block_group_stored
WHERE {{stored}}
ORDER BY import, trace, place
