-- who, when and how much, per trace of a run
WITH s AS (
  SELECT g.trace,
{{figures}}
  FROM block_group g JOIN trace t ON t.trace = g.trace GROUP BY g.trace
)
SELECT {{trace}}, t.program, t.environment, t.account, t.host, t.user, t.description, t.start_time,
  t.end_time, CASE WHEN t.from_rows OR EXISTS (SELECT 1 FROM trace_loss l WHERE l.trace = t.trace)
    THEN 0 ELSE 1 END AS complete, t.from_rows, t.records, t.heap_bytes, t.gap_bytes,
  t.peak_record, t.peak_time,
{{totals}}
FROM trace t JOIN run r ON r.run = t.run LEFT JOIN s ON s.trace = t.trace
