-- the blocks that share all of kind, id, colour, line, call path, process and SQL statement
SELECT run, import, trace, place, no_free,
  id_place AS id, color_place AS color, line_place AS line, path_place AS path,
  process_place AS process, query_place AS query, resizes, made_blocks, made_bytes, made_tot_bytes,
  freed_blocks, freed_bytes, freed_tot_bytes, left_blocks, left_bytes, left_tot_bytes, reset_blocks,
  reset_bytes, reset_tot_bytes, released_blocks, released_bytes, released_tot_bytes, live_blocks,
  live_bytes, live_tot_bytes, peak_blocks, peak_bytes, peak_tot_bytes, temporary_blocks,
  temporary_bytes, temporary_tot_bytes
FROM block_group_stored
WHERE {{stored}}
ORDER BY import, trace, place
