-- who, when and how much, per trace of a run
SELECT run, pid, program, environment, account, host, user, description, start_time, end_time, complete,
  from_rows, records, heap_bytes, gap_bytes, peak_record, peak_time,
{{totals}}
FROM trace_stored
WHERE {{stored}}
ORDER BY import, trace
