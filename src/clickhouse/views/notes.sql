-- what was left out of a profile
SELECT run, pid, texts[1] AS note
FROM list_stored
WHERE {{stored}} AND list = 'trace_note'
ORDER BY import, trace, place
