-- growth of the heap and gaps in it, by process and call path
SELECT run, pid, if(numbers[1] = 0, 'growth', 'gap') AS kind, numbers[6] AS process_pid,
  texts[1] AS process_name, texts[2] AS path, numbers[4] AS count, numbers[5] AS bytes
FROM list_stored
WHERE {{stored}} AND list = 'heap_change'
ORDER BY import, trace, place
