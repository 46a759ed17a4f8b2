-- live memory of an allocation id over time, where it changed
SELECT run, pid, numbers[1] AS step, numbers[5] AS last_record, texts[1] AS time, texts[2] AS id_name,
  numbers[4] AS live_bytes
FROM list_stored
WHERE {{stored}} AND list = 'timeline_level'
ORDER BY import, trace, place
