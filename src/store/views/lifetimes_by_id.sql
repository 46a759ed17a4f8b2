-- blocks that ended by how many memory records they lived, by allocation id
SELECT {{trace}}, {{kind}}, n.name AS id_name, {{from_power}} AS from_records, {{to_power}} AS to_records,
  g.blocks, g.bytes
FROM histogram g {{of_trace}}
JOIN id_name n ON n.trace = g.trace AND n.place = g.id
WHERE g.kind = 1
