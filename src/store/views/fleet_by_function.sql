-- the groups of blocks of all runs by innermost function, with program and host; several rows may have one name
SELECT {{fleet_place}}, {{function_text}} AS name,
{{fleet_figures}}
FROM block_group g {{of_trace}}
JOIN call_path c ON c.trace = g.trace AND c.place = g.path
JOIN function_name f ON f.trace = g.trace AND f.place = c.function
