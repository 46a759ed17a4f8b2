-- bytes of the traces of all runs by colour of an allocation id, with program and host; several rows may have one name
SELECT {{fleet_place}}, n.name || ' / ' || c.name AS name,
{{fleet_figures}}
FROM sum_by_color g {{of_trace}}
JOIN id_name n ON n.trace = g.trace AND n.place = g.id
JOIN color_name c ON c.trace = g.trace AND c.place = g.place
