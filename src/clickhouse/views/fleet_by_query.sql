-- bytes of the traces of all runs by SQL statement, with program and host; several rows may have one name
SELECT run, import AS import_order, program, host, name, allocated_bytes, leaked_bytes, live_bytes,
  peak_bytes, temporary_bytes
FROM name_sum_stored
WHERE {{stored}} AND key = 'query'
ORDER BY import, trace, place
