-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by colour of an allocation id
SELECT run, pid, id_name, color_name,
{{figures}}
FROM block_group_stored
WHERE {{stored}}
GROUP BY run, import, trace, pid, id_place, color_place, id_name, color_name
ORDER BY import, trace, id_place, color_place
