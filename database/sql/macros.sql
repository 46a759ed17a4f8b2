-- Texts that several views share. A line "-- name:" begins a macro. The names are those of the row g,
-- at most one each, so that a name which was announced twice never doubles a figure.

-- id_name:
COALESCE((SELECT MIN(n.id_name) FROM id_names n WHERE n.run_id = g.run_id AND n.main_pid = g.main_pid
    AND n.malid = g.malid),
  'unknown id') AS id_name

-- color_name:
COALESCE((SELECT MIN(n.color_name) FROM color n WHERE n.run_id = g.run_id AND n.main_pid = g.main_pid
    AND n.malid = g.malid AND n.color = g.color),
  'unknown colour') AS color_name

-- source_line:
COALESCE((SELECT MIN(n.source_line) FROM hashloc n WHERE n.run_id = g.run_id AND n.main_pid = g.main_pid
    AND n.location = g.location),
  'unknown line') AS source_line

-- process_name:
COALESCE((SELECT MIN(n.session_name) FROM process n WHERE n.run_id = g.run_id AND n.main_pid = g.main_pid
    AND n.pid = g.pid),
  'default process') AS process_name

-- query_text:
COALESCE((SELECT MIN(n.query_text) FROM queries n WHERE n.run_id = g.run_id AND n.main_pid = g.main_pid
    AND n.qid = g.qid),
  '(no finished SQL operation)') AS query_text

-- A process that still ran when the trace ended has no arcs, but its functions may have names.

-- caller:
COALESCE((SELECT MIN(n.caller_object_name || ':' || n.caller_function_name) FROM arcs n WHERE n.run_id = g.run_id AND n.main_pid = g.main_pid
    AND n.pid = g.pid AND n.arc = g.arc),
  (SELECT MIN(n.object_name || ':' || n.function_name) FROM functions n WHERE n.run_id = g.run_id AND n.main_pid = g.main_pid
    AND n.object = g.caller_object AND n.function_number = g.caller_function),
  CAST(g.caller_object AS VARCHAR(20)) || ':' || CAST(g.caller_function AS VARCHAR(20))) AS caller

-- callee:
COALESCE((SELECT MIN(n.callee_object_name || ':' || n.callee_function_name) FROM arcs n WHERE n.run_id = g.run_id AND n.main_pid = g.main_pid
    AND n.pid = g.pid AND n.arc = g.arc),
  (SELECT MIN(n.object_name || ':' || n.function_name) FROM functions n WHERE n.run_id = g.run_id AND n.main_pid = g.main_pid
    AND n.object = g.callee_object AND n.function_number = g.callee_function),
  CAST(g.callee_object AS VARCHAR(20)) || ':' || CAST(g.callee_function AS VARCHAR(20))) AS callee

-- Sums over the rows b of block, with the peak p of their trace.

-- sums_of_blocks:
  SUM(CASE WHEN b.type <> 'r'
    THEN 1 ELSE 0 END) AS allocated_blocks,
  SUM(CASE WHEN b.type <> 'r'
    THEN b.size ELSE 0 END) AS allocated_bytes,
  SUM(CASE WHEN b.type <> 'r'
    THEN b.tot_size ELSE 0 END) AS allocated_tot_bytes,
  SUM(CASE WHEN b.end_type = 'f'
    THEN 1 ELSE 0 END) AS freed_blocks,
  SUM(CASE WHEN b.end_type = 'f'
    THEN b.size ELSE 0 END) AS freed_bytes,
  SUM(CASE WHEN b.end_type = 'f'
    THEN b.tot_size ELSE 0 END) AS freed_tot_bytes,
  SUM(CASE WHEN b.type <> 'n' AND (b.end_type = 'F' OR b.end_rec IS NULL)
    THEN 1 ELSE 0 END) AS leaked_blocks,
  SUM(CASE WHEN b.type <> 'n' AND (b.end_type = 'F' OR b.end_rec IS NULL)
    THEN b.size ELSE 0 END) AS leaked_bytes,
  SUM(CASE WHEN b.type <> 'n' AND (b.end_type = 'F' OR b.end_rec IS NULL)
    THEN b.tot_size ELSE 0 END) AS leaked_tot_bytes,
  SUM(CASE WHEN b.end_type = 'Z'
    THEN 1 ELSE 0 END) AS reset_blocks,
  SUM(CASE WHEN b.end_type = 'Z'
    THEN b.size ELSE 0 END) AS reset_bytes,
  SUM(CASE WHEN b.end_type = 'Z'
    THEN b.tot_size ELSE 0 END) AS reset_tot_bytes,
  SUM(CASE WHEN b.type = 'n' AND b.end_type = 'F'
    THEN 1 ELSE 0 END) AS released_blocks,
  SUM(CASE WHEN b.type = 'n' AND b.end_type = 'F'
    THEN b.size ELSE 0 END) AS released_bytes,
  SUM(CASE WHEN b.type = 'n' AND b.end_type = 'F'
    THEN b.tot_size ELSE 0 END) AS released_tot_bytes,
  SUM(CASE WHEN b.end_rec IS NULL
    THEN 1 ELSE 0 END) AS live_blocks,
  SUM(CASE WHEN b.end_rec IS NULL
    THEN b.size ELSE 0 END) AS live_bytes,
  SUM(CASE WHEN b.end_rec IS NULL
    THEN b.tot_size ELSE 0 END) AS live_tot_bytes,
  SUM(CASE WHEN b.rec <= p.peak_rec AND (b.end_rec IS NULL OR b.end_rec > p.peak_rec)
    THEN 1 ELSE 0 END) AS peak_blocks,
  SUM(CASE WHEN b.rec <= p.peak_rec AND (b.end_rec IS NULL OR b.end_rec > p.peak_rec)
    THEN b.size ELSE 0 END) AS peak_bytes,
  SUM(CASE WHEN b.rec <= p.peak_rec AND (b.end_rec IS NULL OR b.end_rec > p.peak_rec)
    THEN b.tot_size ELSE 0 END) AS peak_tot_bytes,
  SUM(CASE WHEN b.end_type = 'f' AND b.end_rec - b.rec <= 100
    THEN 1 ELSE 0 END) AS temporary_blocks,
  SUM(CASE WHEN b.end_type = 'f' AND b.end_rec - b.rec <= 100
    THEN b.size ELSE 0 END) AS temporary_bytes,
  SUM(CASE WHEN b.end_type = 'f' AND b.end_rec - b.rec <= 100
    THEN b.tot_size ELSE 0 END) AS temporary_tot_bytes,
  SUM(CASE WHEN b.type = 'r' THEN 1 ELSE 0 END) AS resizes

-- figures:
  SUM(g.allocated_blocks) AS allocated_blocks,
  SUM(g.allocated_bytes) AS allocated_bytes,
  SUM(g.allocated_tot_bytes) AS allocated_tot_bytes,
  SUM(g.freed_blocks) AS freed_blocks,
  SUM(g.freed_bytes) AS freed_bytes,
  SUM(g.freed_tot_bytes) AS freed_tot_bytes,
  SUM(g.leaked_blocks) AS leaked_blocks,
  SUM(g.leaked_bytes) AS leaked_bytes,
  SUM(g.leaked_tot_bytes) AS leaked_tot_bytes,
  SUM(g.reset_blocks) AS reset_blocks,
  SUM(g.reset_bytes) AS reset_bytes,
  SUM(g.reset_tot_bytes) AS reset_tot_bytes,
  SUM(g.released_blocks) AS released_blocks,
  SUM(g.released_bytes) AS released_bytes,
  SUM(g.released_tot_bytes) AS released_tot_bytes,
  SUM(g.live_blocks) AS live_blocks,
  SUM(g.live_bytes) AS live_bytes,
  SUM(g.live_tot_bytes) AS live_tot_bytes,
  SUM(g.peak_blocks) AS peak_blocks,
  SUM(g.peak_bytes) AS peak_bytes,
  SUM(g.peak_tot_bytes) AS peak_tot_bytes,
  SUM(g.temporary_blocks) AS temporary_blocks,
  SUM(g.temporary_bytes) AS temporary_bytes,
  SUM(g.temporary_tot_bytes) AS temporary_tot_bytes,
  SUM(g.resizes) AS resizes

-- Live memory of both kinds after the last record before the marker, and before that one.

-- live_at_marker:
CASE WHEN t.rec > 0 THEN COALESCE((SELECT MAX(m.global_live_size + m.global_nf_size) FROM memory m
    WHERE m.run_id = t.run_id AND m.main_pid = t.main_pid AND m.rec = t.rec), 0) ELSE 0 END

-- live_at_marker_before:
CASE WHEN t.from_rec > 0 THEN COALESCE((SELECT MAX(m.global_live_size + m.global_nf_size)
    FROM memory m
    WHERE m.run_id = t.run_id AND m.main_pid = t.main_pid AND m.rec = t.from_rec), 0) ELSE 0 END

-- markers:
t AS (
  SELECT k.run_id, k.main_pid, k.marker, k.time, k.type, k.subtype, k.marker_text, k.rec,
    COALESCE(LAG(k.rec) OVER (PARTITION BY k.run_id, k.main_pid ORDER BY k.marker), 0) AS from_rec
  FROM marker k
)
