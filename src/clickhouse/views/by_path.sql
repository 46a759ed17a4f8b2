-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by call path
SELECT run, pid, numbers[3] AS depth, texts[1] AS path,
{{path_figures}}
FROM list_stored
WHERE {{stored}} AND list = 'call_path' AND length(numbers) > 4
ORDER BY import, trace, place
