-- blocks by the size that they were made with
SELECT {{trace}}, {{kind}}, {{from_power}} AS from_size, {{to_power}} AS to_size,
  SUM(g.blocks) AS blocks, SUM(g.bytes) AS bytes
FROM histogram g {{of_trace}}
WHERE g.kind = 0
GROUP BY g.trace, g.no_free, g.exponent
