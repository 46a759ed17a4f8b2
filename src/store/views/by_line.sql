-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by source line
SELECT {{trace}}, n.name AS source_line,
{{figures}}
FROM block_group g {{of_trace}}
JOIN line_name n ON n.trace = g.trace AND n.place = g.line
GROUP BY g.trace, g.line
