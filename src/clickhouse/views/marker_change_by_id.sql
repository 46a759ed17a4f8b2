-- live memory of an allocation id at the markers at which it had changed
SELECT run, pid, numbers[1] AS marker, numbers[5] AS record, texts[1] AS time, texts[2] AS marker_text,
  texts[3] AS id_name, numbers[4] AS live_bytes, numbers[6] AS live_change
FROM list_stored
WHERE {{stored}} AND list = 'mark_level'
ORDER BY import, trace, numbers[3], numbers[1]
