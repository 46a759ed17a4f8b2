-- blocks that ended by how many memory records they lived
SELECT run, pid, {{list_kind}}, {{from_power}} AS from_records, {{to_power}} AS to_records,
  sum(numbers[5]) AS blocks, sum(numbers[6]) AS bytes
FROM list_stored
WHERE {{stored}} AND list = 'histogram' AND numbers[1] = 1
GROUP BY run, import, trace, pid, numbers[2], numbers[4]
ORDER BY import, trace, numbers[2], numbers[4]
