-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by innermost function
SELECT run, pid, function_name AS function,
{{figures}}
FROM block_group_stored
WHERE {{stored}}
GROUP BY run, import, trace, pid, function_place, function_name
ORDER BY import, trace, function_place
