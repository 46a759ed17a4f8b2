-- the groups of blocks of all runs by process, with program and host; several rows may have one name
SELECT {{fleet_place}}, n.name AS name,
{{fleet_figures}}
FROM block_group g {{of_trace}}
JOIN process_name n ON n.trace = g.trace AND n.place = g.process
