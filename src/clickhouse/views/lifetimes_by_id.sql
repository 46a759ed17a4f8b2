-- blocks that ended by how many memory records they lived, by allocation id
SELECT run, pid, {{list_kind}}, texts[1] AS id_name, {{from_power}} AS from_records, {{to_power}} AS to_records,
  numbers[5] AS blocks, numbers[6] AS bytes
FROM list_stored
WHERE {{stored}} AND list = 'histogram' AND numbers[1] = 1
ORDER BY import, trace, place
