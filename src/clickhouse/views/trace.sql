-- the traces of runs
SELECT
  run, import, trace, run_id, pid, program, environment, account, host, user, description,
  start_time, end_time, records, heap_bytes, gap_bytes, from_rows, peak_blocks, peak_bytes,
  peak_tot_bytes, peak_record, peak_time
FROM trace_stored
WHERE {{stored}}
ORDER BY import, trace
