-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by SQL statement
SELECT run, pid, query_text AS query,
{{figures}}
FROM block_group_stored
WHERE {{stored}}
GROUP BY run, import, trace, pid, query_place, query_text
ORDER BY import, trace, query_place
