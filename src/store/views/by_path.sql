-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by call path
WITH RECURSIVE {{path_texts}}
SELECT {{trace}}, p.depth, p.path,
{{figures}}
FROM block_group g {{of_trace}}
JOIN p ON p.trace = g.trace AND p.place = g.path
GROUP BY g.trace, g.path
