-- blocks by the size that they were made with, by allocation id
SELECT run, pid, {{list_kind}}, texts[1] AS id_name, {{from_power}} AS from_size, {{to_power}} AS to_size,
  numbers[5] AS blocks, numbers[6] AS bytes
FROM list_stored
WHERE {{stored}} AND list = 'histogram' AND numbers[1] = 0
ORDER BY import, trace, place
