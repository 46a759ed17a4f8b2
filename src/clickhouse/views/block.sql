-- every block (a, n) and every resize of one (r), with the record that ended it
SELECT run_id, main_pid, rec, type, malid, color, location, pid, arc, caller_object, caller_function,
  callee_object, callee_function, query_seq, size, tot_size, size_change, end_rec, end_type
FROM (
  SELECT run AS run_id, import, main_pid, rec, type, malid, color, location, pid, arc, caller_object,
    caller_function, callee_object, callee_function, query_seq, size, tot_size, size_change
  FROM memory_stored
  WHERE import IN (SELECT import FROM newest_import) AND (type IN ('a', 'n') OR (type = 'r' AND linked_rec <> 0))
) AS m ALL LEFT JOIN (
  SELECT import, main_pid, alloc_rec AS rec, toNullable(free_rec) AS end_rec, toNullable(type) AS end_type
  FROM freemem_stored
  WHERE import IN (SELECT import FROM newest_import)
) AS f USING (import, main_pid, rec)
