-- the groups of blocks of all runs by SQL statement, with program and host; several rows may have one name
SELECT {{fleet_place}}, n.text AS name,
{{fleet_figures}}
FROM block_group g {{of_trace}}
JOIN query_text n ON n.trace = g.trace AND n.place = g.query
