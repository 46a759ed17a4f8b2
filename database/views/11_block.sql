-- every block (a, n) and every resize of one (r), with the record that ended it
SELECT m.run_id, m.main_pid, m.rec, m.type, m.malid, m.color, m.location, m.pid, m.arc,
  m.caller_object, m.caller_function, m.callee_object, m.callee_function, m.query_seq, m.size,
  m.tot_size, m.size_change, f.free_rec AS end_rec, f.type AS end_type
FROM memory m LEFT JOIN freemem f
  ON f.run_id = m.run_id AND f.main_pid = m.main_pid AND f.alloc_rec = m.rec
WHERE m.type IN ('a', 'n') OR (m.type = 'r' AND m.linked_rec <> 0)
