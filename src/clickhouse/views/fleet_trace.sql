-- program, host, peak and leaks of the traces of all runs
SELECT run, import AS import_order, program, host, pid, complete, records, peak_bytes,
  total_leaked_bytes AS leaked_bytes
FROM trace_stored
WHERE {{stored}}
ORDER BY import, trace
