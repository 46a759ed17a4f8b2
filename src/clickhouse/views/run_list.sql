-- the runs in the order of their imports
SELECT run, imported_at, source, traces, complete, from_rows, records,
  allocated_blocks, allocated_bytes, allocated_tot_bytes,
  leaked_blocks, leaked_bytes, leaked_tot_bytes,
  live_blocks, live_bytes, live_tot_bytes,
  peak_blocks, peak_bytes, peak_tot_bytes, row_count
FROM import_stored
WHERE {{stored}}
ORDER BY import
