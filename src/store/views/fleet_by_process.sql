-- bytes of the traces of all runs by process, with program and host; several rows may have one name
SELECT {{fleet_place}}, n.name AS name,
{{fleet_figures}}
FROM sum_by_process g {{of_trace}}
JOIN process_name n ON n.trace = g.trace AND n.place = g.place
