-- sums over blocks of one kind, id, colour, line, arc and query
WITH b AS (
  SELECT b.*, q.qid, CASE WHEN b.type = 'n' THEN 'no free' ELSE 'with free' END AS kind
  FROM block b LEFT JOIN queryevents q
    ON q.run_id = b.run_id AND q.main_pid = b.main_pid AND q.seq = b.query_seq
)
SELECT b.run_id, b.main_pid, b.kind, b.malid, b.color, b.location, b.pid, b.arc, b.qid,
  MIN(b.caller_object) AS caller_object, MIN(b.caller_function) AS caller_function,
  MIN(b.callee_object) AS callee_object, MIN(b.callee_function) AS callee_function,
{{sums_of_blocks}}
FROM b JOIN peak p ON p.run_id = b.run_id AND p.main_pid = b.main_pid
GROUP BY b.run_id, b.main_pid, b.kind, b.malid, b.color, b.location, b.pid, b.arc, b.qid
