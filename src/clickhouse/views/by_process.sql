-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by process
SELECT run, pid, process_pid, process_name,
{{figures}}
FROM block_group_stored
WHERE {{stored}}
GROUP BY run, import, trace, pid, process_place, process_pid, process_name
ORDER BY import, trace, process_place
