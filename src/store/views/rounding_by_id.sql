-- bytes lost to the allocator's rounding, by allocation id
SELECT {{trace}}, n.name AS id_name, SUM(g.made_blocks) AS allocated_blocks,
  SUM(g.made_bytes) AS allocated_bytes,
  SUM(g.made_tot_bytes - g.made_bytes) AS rounding_bytes,
  CASE SUM(g.made_bytes) WHEN 0 THEN 0
    ELSE 100.0 * SUM(g.made_tot_bytes - g.made_bytes) / SUM(g.made_bytes) END AS percent
FROM block_group g {{of_trace}}
JOIN id_name n ON n.trace = g.trace AND n.place = g.id
GROUP BY g.trace, g.id
