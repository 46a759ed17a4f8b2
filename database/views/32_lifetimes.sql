-- number and bytes of blocks by how many memory records they lived since they were made or resized
WITH t AS (
  SELECT b.run_id, b.main_pid, b.size,
    CASE WHEN b.end_rec - b.rec <= 1 THEN 1 WHEN b.end_rec - b.rec <= 10 THEN 10
      WHEN b.end_rec - b.rec <= 100 THEN 100 WHEN b.end_rec - b.rec <= 1000 THEN 1000
      WHEN b.end_rec - b.rec <= 10000 THEN 10000 WHEN b.end_rec - b.rec <= 100000 THEN 100000
      ELSE 1000000000 END AS up_to
  FROM block b WHERE b.end_rec IS NOT NULL AND b.end_type <> 'r'
)
SELECT t.run_id, t.main_pid,
  CASE WHEN t.up_to = 1000000000 THEN 'more' ELSE 'up to ' || CAST(t.up_to AS VARCHAR(20)) END
    AS records, t.up_to, COUNT(*) AS blocks, SUM(t.size) AS bytes
FROM t GROUP BY t.run_id, t.main_pid, t.up_to
