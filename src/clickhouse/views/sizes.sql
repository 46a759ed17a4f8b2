-- blocks by the size that they were made with
SELECT run, pid, {{list_kind}}, {{from_power}} AS from_size, {{to_power}} AS to_size,
  sum(numbers[5]) AS blocks, sum(numbers[6]) AS bytes
FROM list_stored
WHERE {{stored}} AND list = 'histogram' AND numbers[1] = 0
GROUP BY run, import, trace, pid, numbers[2], numbers[4]
ORDER BY import, trace, numbers[2], numbers[4]
