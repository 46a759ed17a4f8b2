-- what the trace of a run lacks: frees without a block, unknown ids and lines, its end
WITH u AS (
  SELECT b.run_id, b.main_pid,
    SUM(CASE WHEN i.malid IS NULL THEN 1 ELSE 0 END) AS of_unknown_ids,
    SUM(CASE WHEN l.location IS NULL THEN 1 ELSE 0 END) AS of_unknown_lines
  FROM block b
  LEFT JOIN (SELECT DISTINCT run_id, main_pid, malid FROM malid) i
    ON i.run_id = b.run_id AND i.main_pid = b.main_pid AND i.malid = b.malid
  LEFT JOIN (SELECT DISTINCT run_id, main_pid, location FROM hashloc) l
    ON l.run_id = b.run_id AND l.main_pid = b.main_pid AND l.location = b.location
  WHERE b.type <> 'r' GROUP BY b.run_id, b.main_pid
)
SELECT r.run_id, r.main_pid, r.frees_without_block, r.resizes_without_block,
  COALESCE(u.of_unknown_ids, 0) AS blocks_of_unknown_ids,
  COALESCE(u.of_unknown_lines, 0) AS blocks_of_unknown_lines,
  CASE WHEN EXISTS (SELECT 1 FROM marker k WHERE k.run_id = r.run_id AND k.main_pid = r.main_pid
    AND k.type = 'Record' AND k.subtype = 'End') THEN 1 ELSE 0 END AS replayed_to_its_end
FROM run_summary r LEFT JOIN u ON u.run_id = r.run_id AND u.main_pid = r.main_pid
