-- who, when and how much, per trace of a run
WITH m AS (
  SELECT run_id, main_pid, MAX(rec) AS records,
    SUM(CASE WHEN type = 'f' AND linked_rec = 0 THEN 1 ELSE 0 END) AS frees_without_block,
    SUM(CASE WHEN type = 'r' AND linked_rec = 0 THEN 1 ELSE 0 END) AS resizes_without_block
  FROM memory GROUP BY run_id, main_pid
), g AS (
  SELECT g.run_id, g.main_pid,
{{figures}}
  FROM block_groups g GROUP BY g.run_id, g.main_pid
), h AS (
  SELECT run_id, main_pid, MAX(sbrk_total) AS heap_bytes, MAX(gap_total) AS gap_bytes
  FROM sbrk GROUP BY run_id, main_pid
)
SELECT r.run_id, r.main_pid, r.program, r.environment, r.account, r.host, r.user_name,
  r.description, r.start_time, r.end_time, COALESCE(m.records, 0) AS records,
  COALESCE(m.frees_without_block, 0) AS frees_without_block,
  COALESCE(m.resizes_without_block, 0) AS resizes_without_block, p.peak_rec, p.peak_time,
  COALESCE(h.heap_bytes, 0) AS heap_bytes, COALESCE(h.gap_bytes, 0) AS gap_bytes,
  COALESCE(g.allocated_blocks, 0) AS allocated_blocks,
  COALESCE(g.allocated_bytes, 0) AS allocated_bytes,
  COALESCE(g.allocated_tot_bytes, 0) AS allocated_tot_bytes,
  COALESCE(g.freed_blocks, 0) AS freed_blocks,
  COALESCE(g.freed_bytes, 0) AS freed_bytes,
  COALESCE(g.freed_tot_bytes, 0) AS freed_tot_bytes,
  COALESCE(g.leaked_blocks, 0) AS leaked_blocks,
  COALESCE(g.leaked_bytes, 0) AS leaked_bytes,
  COALESCE(g.leaked_tot_bytes, 0) AS leaked_tot_bytes,
  COALESCE(g.reset_blocks, 0) AS reset_blocks,
  COALESCE(g.reset_bytes, 0) AS reset_bytes,
  COALESCE(g.reset_tot_bytes, 0) AS reset_tot_bytes,
  COALESCE(g.released_blocks, 0) AS released_blocks,
  COALESCE(g.released_bytes, 0) AS released_bytes,
  COALESCE(g.released_tot_bytes, 0) AS released_tot_bytes,
  COALESCE(g.live_blocks, 0) AS live_blocks,
  COALESCE(g.live_bytes, 0) AS live_bytes,
  COALESCE(g.live_tot_bytes, 0) AS live_tot_bytes,
  COALESCE(g.peak_blocks, 0) AS peak_blocks,
  COALESCE(g.peak_bytes, 0) AS peak_bytes,
  COALESCE(g.peak_tot_bytes, 0) AS peak_tot_bytes,
  COALESCE(g.temporary_blocks, 0) AS temporary_blocks,
  COALESCE(g.temporary_bytes, 0) AS temporary_bytes,
  COALESCE(g.temporary_tot_bytes, 0) AS temporary_tot_bytes,
  COALESCE(g.resizes, 0) AS resizes
FROM runs r
LEFT JOIN m ON m.run_id = r.run_id AND m.main_pid = r.main_pid
LEFT JOIN peak p ON p.run_id = r.run_id AND p.main_pid = r.main_pid
LEFT JOIN g ON g.run_id = r.run_id AND g.main_pid = r.main_pid
LEFT JOIN h ON h.run_id = r.run_id AND h.main_pid = r.main_pid
