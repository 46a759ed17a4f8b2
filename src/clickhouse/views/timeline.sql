-- live memory over time: highest and last, and the growth of the heap
SELECT run, pid, place AS step, numbers[1] AS last_record, texts[1] AS time, numbers[2] AS highest_bytes,
  numbers[3] AS last_bytes, numbers[4] AS heap_bytes
FROM list_stored
WHERE {{stored}} AND list = 'timeline_step'
ORDER BY import, trace, place
