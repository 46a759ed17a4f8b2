-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by source line
SELECT run, pid, line_name AS source_line,
{{figures}}
FROM block_group_stored
WHERE {{stored}}
GROUP BY run, import, trace, pid, line_place, line_name
ORDER BY import, trace, line_place
