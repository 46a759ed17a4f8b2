-- bytes lost to the allocator's rounding, by allocation id
SELECT run, pid, id_name, sum(made_blocks) AS allocated_blocks, sum(made_bytes) AS allocated_bytes,
  sum(made_tot_bytes - made_bytes) AS rounding_bytes,
  if(sum(made_bytes) = 0, 0., 100. * sum(made_tot_bytes - made_bytes) / sum(made_bytes)) AS percent
FROM block_group_stored
WHERE {{stored}}
GROUP BY run, import, trace, pid, id_place, id_name
ORDER BY import, trace, id_place
