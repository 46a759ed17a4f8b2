-- the groups of blocks of all runs by colour of an allocation id, with program and host; several rows may have one name
SELECT run, import AS import_order, program, host, concat(id_name, ' / ', color_name) AS name,
{{fleet_figures}}
FROM block_group_stored
WHERE {{stored}}
ORDER BY import, trace, place
