-- blocks that ended by how many memory records they lived
SELECT {{trace}}, {{kind}}, {{from_power}} AS from_records, {{to_power}} AS to_records,
  SUM(g.blocks) AS blocks, SUM(g.bytes) AS bytes
FROM histogram g {{of_trace}}
WHERE g.kind = 1
GROUP BY g.trace, g.no_free, g.exponent
