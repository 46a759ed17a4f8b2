-- bytes of the traces of all runs by innermost function, with program and host; several rows may have one name
SELECT {{fleet_place}}, {{function_text}} AS name,
{{fleet_figures}}
FROM sum_by_function g {{of_trace}}
JOIN function_name f ON f.trace = g.trace AND f.place = g.place
