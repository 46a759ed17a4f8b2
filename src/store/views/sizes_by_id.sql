-- blocks by the size that they were made with, by allocation id
SELECT {{trace}}, {{kind}}, n.name AS id_name, {{from_power}} AS from_size, {{to_power}} AS to_size,
  g.blocks, g.bytes
FROM histogram g {{of_trace}}
JOIN id_name n ON n.trace = g.trace AND n.place = g.id
WHERE g.kind = 0
