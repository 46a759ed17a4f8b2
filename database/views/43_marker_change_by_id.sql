-- change of live memory between a marker and the one before, by allocation id
WITH {{markers}}, g AS (
  SELECT t.run_id, t.main_pid, t.marker, m.malid, COUNT(*) AS records,
    SUM(CASE WHEN m.type IN ('a', 'n') THEN 1 ELSE 0 END) AS allocated_blocks,
    SUM(m.size_change) AS live_change
  FROM t JOIN memory m
    ON m.run_id = t.run_id AND m.main_pid = t.main_pid AND m.rec > t.from_rec AND m.rec <= t.rec
  GROUP BY t.run_id, t.main_pid, t.marker, m.malid
)
SELECT g.run_id, g.main_pid, g.marker, {{id_name}}, g.records, g.allocated_blocks, g.live_change
FROM g
