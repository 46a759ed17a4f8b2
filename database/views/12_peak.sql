-- the record at which most memory was live, per trace
WITH t AS (
  SELECT m.run_id, m.main_pid, MAX(m.global_live_size + m.global_nf_size) AS peak_bytes
  FROM memory m WHERE m.rec > 0 GROUP BY m.run_id, m.main_pid
), r AS (
  SELECT t.run_id, t.main_pid, t.peak_bytes,
    (SELECT MIN(m.rec) FROM memory m WHERE m.run_id = t.run_id AND m.main_pid = t.main_pid
      AND m.rec > 0 AND m.global_live_size + m.global_nf_size = t.peak_bytes) AS peak_rec
  FROM t
)
SELECT r.run_id, r.main_pid, r.peak_rec, r.peak_bytes, MIN(m.time) AS peak_time,
  MAX(m.global_live_tot_size + m.global_nf_tot_size) AS peak_tot_bytes
FROM r JOIN memory m ON m.run_id = r.run_id AND m.main_pid = r.main_pid AND m.rec = r.peak_rec
GROUP BY r.run_id, r.main_pid, r.peak_rec, r.peak_bytes
