-- the runs in the order of their imports
WITH s AS (
  SELECT g.trace,
{{figures}}
  FROM block_group g JOIN trace t ON t.trace = g.trace GROUP BY g.trace
)
SELECT r.name AS run, r.imported_at, r.source, COUNT(t.trace) AS traces, r.complete,
  COALESCE(MAX(t.from_rows), 0) AS from_rows, COALESCE(SUM(t.records), 0) AS records,
  COALESCE(SUM(s.allocated_blocks), 0) AS allocated_blocks,
  COALESCE(SUM(s.allocated_bytes), 0) AS allocated_bytes,
  COALESCE(SUM(s.allocated_tot_bytes), 0) AS allocated_tot_bytes,
  COALESCE(SUM(s.leaked_blocks), 0) AS leaked_blocks,
  COALESCE(SUM(s.leaked_bytes), 0) AS leaked_bytes,
  COALESCE(SUM(s.leaked_tot_bytes), 0) AS leaked_tot_bytes,
  COALESCE(SUM(s.live_blocks), 0) AS live_blocks,
  COALESCE(SUM(s.live_bytes), 0) AS live_bytes,
  COALESCE(SUM(s.live_tot_bytes), 0) AS live_tot_bytes,
  COALESCE(SUM(t.peak_blocks), 0) AS peak_blocks,
  COALESCE(SUM(t.peak_bytes), 0) AS peak_bytes,
  COALESCE(SUM(t.peak_tot_bytes), 0) AS peak_tot_bytes,
  r.row_count
FROM run r LEFT JOIN trace t ON t.run = r.run LEFT JOIN s ON s.trace = t.trace
GROUP BY r.run ORDER BY r.run
