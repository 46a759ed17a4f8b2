-- bytes of the traces of all runs by SQL statement, with program and host; several rows may have one name
SELECT {{fleet_place}}, n.text AS name,
{{fleet_figures}}
FROM sum_by_query g {{of_trace}}
JOIN query_text n ON n.trace = g.trace AND n.place = g.place
