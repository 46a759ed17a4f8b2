-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by allocation id
SELECT {{trace}}, n.name AS id_name,
{{figures}}
FROM block_group g {{of_trace}}
JOIN id_name n ON n.trace = g.trace AND n.place = g.id
GROUP BY g.trace, g.id
