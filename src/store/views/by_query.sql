-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by SQL statement
SELECT {{trace}}, n.text AS query,
{{figures}}
FROM block_group g {{of_trace}}
JOIN query_text n ON n.trace = g.trace AND n.place = g.query
GROUP BY g.trace, g.query
