-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by colour of an allocation id
SELECT {{trace}}, n.name AS id_name, c.name AS color_name,
{{figures}}
FROM block_group g {{of_trace}}
JOIN id_name n ON n.trace = g.trace AND n.place = g.id
JOIN color_name c ON c.trace = g.trace AND c.place = g.color
GROUP BY g.trace, g.id, g.color
