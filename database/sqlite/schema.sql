CREATE TABLE memory (
  run_id TEXT NOT NULL,
  main_pid INTEGER NOT NULL,
  time TEXT NOT NULL,
  type TEXT NOT NULL,
  rec INTEGER NOT NULL,
  rec_thousands INTEGER NOT NULL,
  pid INTEGER NOT NULL,
  arc INTEGER NOT NULL,
  flow INTEGER NOT NULL,
  depth INTEGER NOT NULL,
  caller_object INTEGER NOT NULL,
  caller_function INTEGER NOT NULL,
  callee_object INTEGER NOT NULL,
  callee_function INTEGER NOT NULL,
  hosk_call TEXT NOT NULL,
  hosk_symbol INTEGER NOT NULL,
  hosk_args TEXT NOT NULL,
  query_seq INTEGER NOT NULL,
  location INTEGER NOT NULL,
  malid INTEGER NOT NULL,
  color INTEGER NOT NULL,
  addr INTEGER NOT NULL,
  size_change INTEGER NOT NULL,
  tot_size_change INTEGER NOT NULL,
  size INTEGER NOT NULL,
  tot_size INTEGER NOT NULL,
  addr2 INTEGER NOT NULL,
  linked_rec INTEGER NOT NULL,
  color_label TEXT AS ('color') VIRTUAL,
  color_live_size INTEGER NOT NULL,
  color_live_tot_size INTEGER NOT NULL,
  color_live_count INTEGER NOT NULL,
  color_peak_size INTEGER NOT NULL,
  color_peak_tot_size INTEGER NOT NULL,
  color_mem_size INTEGER NOT NULL,
  color_mem_tot_size INTEGER NOT NULL,
  color_rec INTEGER NOT NULL,
  color_rec_tens INTEGER NOT NULL,
  malid_label TEXT AS ('malid') VIRTUAL,
  malid_live_size INTEGER NOT NULL,
  malid_live_tot_size INTEGER NOT NULL,
  malid_live_count INTEGER NOT NULL,
  malid_peak_size INTEGER NOT NULL,
  malid_peak_tot_size INTEGER NOT NULL,
  malid_mem_size INTEGER NOT NULL,
  malid_mem_tot_size INTEGER NOT NULL,
  malid_rec INTEGER NOT NULL,
  malid_rec_hundreds INTEGER NOT NULL,
  malid_sum_size INTEGER NOT NULL,
  malid_sum_tot_size INTEGER NOT NULL,
  malid_sum_count INTEGER NOT NULL,
  process_label TEXT AS ('process') VIRTUAL,
  process_live_size INTEGER NOT NULL,
  process_live_tot_size INTEGER NOT NULL,
  process_live_count INTEGER NOT NULL,
  process_peak_size INTEGER NOT NULL,
  process_peak_tot_size INTEGER NOT NULL,
  process_mem_size INTEGER NOT NULL,
  process_mem_tot_size INTEGER NOT NULL,
  process_rec INTEGER NOT NULL,
  process_rec_hundreds INTEGER NOT NULL,
  process_sum_size INTEGER NOT NULL,
  process_sum_tot_size INTEGER NOT NULL,
  process_sum_count INTEGER NOT NULL,
  process_malid_label TEXT AS ('process m') VIRTUAL,
  process_malid_live_size INTEGER NOT NULL,
  process_malid_live_tot_size INTEGER NOT NULL,
  process_malid_live_count INTEGER NOT NULL,
  process_malid_mem_size INTEGER NOT NULL,
  process_malid_mem_tot_size INTEGER NOT NULL,
  process_malid_rec INTEGER NOT NULL,
  process_malid_rec_hundreds INTEGER NOT NULL,
  process_color_label TEXT AS ('process c') VIRTUAL,
  process_color_live_size INTEGER NOT NULL,
  process_color_live_tot_size INTEGER NOT NULL,
  process_color_live_count INTEGER NOT NULL,
  process_color_mem_size INTEGER NOT NULL,
  process_color_mem_tot_size INTEGER NOT NULL,
  process_color_rec INTEGER NOT NULL,
  process_color_rec_tens INTEGER NOT NULL,
  global_label TEXT AS ('global') VIRTUAL,
  global_live_size INTEGER NOT NULL,
  global_live_tot_size INTEGER NOT NULL,
  global_live_count INTEGER NOT NULL,
  global_peak_size INTEGER NOT NULL,
  global_peak_tot_size INTEGER NOT NULL,
  global_nf_size INTEGER NOT NULL,
  global_nf_tot_size INTEGER NOT NULL,
  global_nf_count INTEGER NOT NULL,
  sbrk_label TEXT AS ('sbrk') VIRTUAL,
  sbrk_total INTEGER NOT NULL,
  sbrk_count INTEGER NOT NULL,
  gap_total INTEGER NOT NULL,
  gap_count INTEGER NOT NULL
);
CREATE TABLE sbrk (
  run_id TEXT NOT NULL,
  main_pid INTEGER NOT NULL,
  time TEXT NOT NULL,
  record INTEGER NOT NULL,
  type TEXT NOT NULL,
  sbrk_row INTEGER NOT NULL,
  record_again INTEGER NOT NULL,
  pid INTEGER NOT NULL,
  arc INTEGER NOT NULL,
  flow INTEGER NOT NULL,
  depth INTEGER NOT NULL,
  caller_object INTEGER NOT NULL,
  caller_function INTEGER NOT NULL,
  callee_object INTEGER NOT NULL,
  callee_function INTEGER NOT NULL,
  hosk_call TEXT NOT NULL,
  hosk_symbol INTEGER NOT NULL,
  hosk_args TEXT NOT NULL,
  query_seq INTEGER NOT NULL,
  addr_or_l_sbrk INTEGER NOT NULL,
  size_or_c_sbrk INTEGER NOT NULL,
  sbrk_total INTEGER NOT NULL,
  sbrk_count INTEGER NOT NULL,
  gap_total INTEGER NOT NULL,
  gap_count INTEGER NOT NULL
);
CREATE TABLE queryevents (
  run_id TEXT NOT NULL,
  main_pid INTEGER NOT NULL,
  seq INTEGER NOT NULL,
  time TEXT NOT NULL,
  qid INTEGER NOT NULL,
  linked_qid INTEGER NOT NULL,
  type TEXT NOT NULL,
  start_sbrk_rows INTEGER NOT NULL,
  end_sbrk_rows INTEGER NOT NULL,
  start_rec INTEGER NOT NULL,
  end_rec INTEGER NOT NULL,
  pid INTEGER NOT NULL,
  arc INTEGER NOT NULL,
  flow INTEGER NOT NULL,
  depth INTEGER NOT NULL,
  caller_object INTEGER NOT NULL,
  caller_function INTEGER NOT NULL,
  callee_object INTEGER NOT NULL,
  callee_function INTEGER NOT NULL,
  hosk_call TEXT NOT NULL,
  hosk_symbol INTEGER NOT NULL,
  hosk_args TEXT NOT NULL,
  query_seq INTEGER NOT NULL
);
CREATE TABLE marker (
  run_id TEXT NOT NULL,
  main_pid INTEGER NOT NULL,
  marker INTEGER NOT NULL,
  rec INTEGER NOT NULL,
  last_rec INTEGER NOT NULL,
  time TEXT NOT NULL,
  type TEXT NOT NULL,
  subtype TEXT NOT NULL,
  marker_text TEXT NOT NULL
);
CREATE TABLE freemem (
  run_id TEXT NOT NULL,
  main_pid INTEGER NOT NULL,
  alloc_rec INTEGER NOT NULL,
  free_rec INTEGER NOT NULL,
  type TEXT NOT NULL
);
CREATE TABLE arena (
  run_id TEXT NOT NULL,
  main_pid INTEGER NOT NULL,
  time TEXT NOT NULL,
  record INTEGER NOT NULL,
  arena_row INTEGER NOT NULL,
  pid INTEGER NOT NULL,
  arc INTEGER NOT NULL,
  flow INTEGER NOT NULL,
  depth INTEGER NOT NULL,
  caller_object INTEGER NOT NULL,
  caller_function INTEGER NOT NULL,
  callee_object INTEGER NOT NULL,
  callee_function INTEGER NOT NULL,
  hosk_call TEXT NOT NULL,
  hosk_symbol INTEGER NOT NULL,
  hosk_args TEXT NOT NULL,
  query_seq INTEGER NOT NULL,
  arena INTEGER NOT NULL,
  used INTEGER NOT NULL,
  freed INTEGER NOT NULL
);
CREATE TABLE arcs (
  run_id TEXT NOT NULL,
  main_pid INTEGER NOT NULL,
  pid INTEGER NOT NULL,
  arc INTEGER NOT NULL,
  caller_object_name TEXT NOT NULL,
  caller_object INTEGER NOT NULL,
  caller_function INTEGER NOT NULL,
  caller_function_name TEXT NOT NULL,
  callee_object_name TEXT NOT NULL,
  callee_object INTEGER NOT NULL,
  callee_function INTEGER NOT NULL,
  callee_function_name TEXT NOT NULL
);
CREATE TABLE symbols (
  run_id TEXT NOT NULL,
  main_pid INTEGER NOT NULL,
  pid INTEGER NOT NULL,
  flow INTEGER NOT NULL,
  ordinal INTEGER NOT NULL,
  sym INTEGER NOT NULL,
  size INTEGER NOT NULL,
  category TEXT NOT NULL,
  flags INTEGER NOT NULL,
  declaration TEXT NOT NULL
);
CREATE TABLE flowdata (
  run_id TEXT NOT NULL,
  main_pid INTEGER NOT NULL,
  pid INTEGER NOT NULL,
  flow INTEGER NOT NULL,
  ordinal INTEGER NOT NULL,
  group_size INTEGER NOT NULL,
  group_count INTEGER NOT NULL,
  symbol_lines TEXT NOT NULL
);
CREATE TABLE flow (
  run_id TEXT NOT NULL,
  main_pid INTEGER NOT NULL,
  pid INTEGER NOT NULL,
  flow INTEGER NOT NULL,
  depth INTEGER NOT NULL,
  record INTEGER NOT NULL,
  arc INTEGER NOT NULL,
  direction TEXT NOT NULL
);
CREATE TABLE process (
  run_id TEXT NOT NULL,
  main_pid INTEGER NOT NULL,
  pid INTEGER NOT NULL,
  session_name TEXT NOT NULL,
  malid INTEGER NOT NULL,
  xmlid INTEGER NOT NULL,
  parent INTEGER NOT NULL,
  start_time TEXT NOT NULL,
  end_time TEXT NOT NULL,
  start_record INTEGER NOT NULL,
  end_record INTEGER NOT NULL
);
CREATE TABLE hashloc (
  run_id TEXT NOT NULL,
  main_pid INTEGER NOT NULL,
  location INTEGER NOT NULL,
  source_line TEXT NOT NULL
);
CREATE TABLE malid (
  run_id TEXT NOT NULL,
  main_pid INTEGER NOT NULL,
  malid INTEGER NOT NULL,
  location INTEGER NOT NULL,
  reserve_type TEXT NOT NULL,
  category TEXT NOT NULL,
  description TEXT NOT NULL,
  reference TEXT NOT NULL,
  default_size INTEGER NOT NULL,
  start_time TEXT NOT NULL,
  end_time TEXT NOT NULL,
  start_record INTEGER NOT NULL,
  end_record INTEGER NOT NULL
);
CREATE TABLE color (
  run_id TEXT NOT NULL,
  main_pid INTEGER NOT NULL,
  malid INTEGER NOT NULL,
  color INTEGER NOT NULL,
  color_name TEXT NOT NULL
);
CREATE TABLE queries (
  run_id TEXT NOT NULL,
  main_pid INTEGER NOT NULL,
  pid INTEGER NOT NULL,
  qid INTEGER NOT NULL,
  linked_qid INTEGER NOT NULL,
  start_time TEXT NOT NULL,
  first_use_time TEXT NOT NULL,
  last_use_time TEXT NOT NULL,
  query_text TEXT NOT NULL
);
CREATE TABLE runs (
  run_id TEXT NOT NULL,
  main_pid INTEGER NOT NULL,
  start_time TEXT NOT NULL,
  end_time TEXT NOT NULL,
  program TEXT NOT NULL,
  environment TEXT NOT NULL,
  account TEXT NOT NULL,
  host TEXT NOT NULL,
  user_name TEXT NOT NULL,
  description TEXT NOT NULL,
  m_entry_size INTEGER NOT NULL,
  mem_block_size INTEGER NOT NULL,
  m_group_size INTEGER NOT NULL
);
CREATE TABLE objects (
  run_id TEXT NOT NULL,
  main_pid INTEGER NOT NULL,
  object INTEGER NOT NULL,
  object_name TEXT NOT NULL
);
CREATE TABLE functions (
  run_id TEXT NOT NULL,
  main_pid INTEGER NOT NULL,
  object_name TEXT NOT NULL,
  object INTEGER NOT NULL,
  function_number INTEGER NOT NULL,
  function_name TEXT NOT NULL
);

CREATE TABLE imports (
  run_id TEXT NOT NULL,
  source TEXT NOT NULL,
  imported_at TEXT NOT NULL,
  data_separator TEXT NOT NULL,
  fun_separator TEXT NOT NULL,
  row_count INTEGER NOT NULL,
  rejected_count INTEGER NOT NULL
);
CREATE TABLE rejected_rows (
  run_id TEXT NOT NULL,
  file TEXT NOT NULL,
  line INTEGER NOT NULL,
  reason TEXT NOT NULL,
  row_begin TEXT NOT NULL
);
CREATE INDEX rejected_rows_by_run ON rejected_rows (run_id);
CREATE INDEX memory_by_rec ON memory (run_id, main_pid, rec, type, malid, color, location, pid, arc, caller_object, caller_function, callee_object, callee_function, query_seq, size, tot_size, size_change, linked_rec, global_live_size, global_nf_size);
CREATE INDEX freemem_by_alloc ON freemem (run_id, main_pid, alloc_rec, free_rec, type);
CREATE INDEX hashloc_by_location ON hashloc (run_id, main_pid, location, source_line);
CREATE INDEX malid_by_malid ON malid (run_id, main_pid, malid);
CREATE INDEX color_by_color ON color (run_id, main_pid, malid, color, color_name);
CREATE INDEX arcs_by_arc ON arcs (run_id, main_pid, pid, arc);
CREATE INDEX functions_by_number ON functions (run_id, main_pid, object, function_number);
CREATE INDEX process_by_pid ON process (run_id, main_pid, pid, session_name);
CREATE INDEX queryevents_by_seq ON queryevents (run_id, main_pid, seq, qid);
CREATE INDEX queries_by_qid ON queries (run_id, main_pid, qid);
CREATE INDEX marker_by_marker ON marker (run_id, main_pid, marker, rec);
CREATE INDEX sbrk_by_row ON sbrk (run_id, main_pid, sbrk_row);

-- allocation ids with a name that means the same in every run
CREATE VIEW id_names AS
SELECT run_id, main_pid, malid, CASE WHEN COALESCE(description, '') = '' THEN reserve_type ELSE category || ' ' || description END AS id_name, reserve_type FROM malid;

-- every block (a, n) and every resize of one (r), with the record that ended it
CREATE VIEW block AS
SELECT m.run_id, m.main_pid, m.rec, m.type, m.malid, m.color, m.location, m.pid, m.arc, m.caller_object, m.caller_function, m.callee_object, m.callee_function, m.query_seq, m.size, m.tot_size, m.size_change, f.free_rec AS end_rec, f.type AS end_type FROM memory m LEFT JOIN freemem f ON f.run_id = m.run_id AND f.main_pid = m.main_pid AND f.alloc_rec = m.rec WHERE m.type IN ('a', 'n') OR (m.type = 'r' AND m.linked_rec <> 0);

-- the record at which most memory was live, per trace
CREATE VIEW peak_query AS
WITH t AS (SELECT m.run_id, m.main_pid, MAX(m.global_live_size + m.global_nf_size) AS peak_bytes FROM memory m WHERE m.rec > 0 GROUP BY m.run_id, m.main_pid), r AS (SELECT t.run_id, t.main_pid, t.peak_bytes, (SELECT MIN(m.rec) FROM memory m WHERE m.run_id = t.run_id AND m.main_pid = t.main_pid AND m.rec > 0 AND m.global_live_size + m.global_nf_size = t.peak_bytes) AS peak_rec FROM t) SELECT r.run_id, r.main_pid, r.peak_rec, r.peak_bytes, m.time AS peak_time, m.global_live_tot_size + m.global_nf_tot_size AS peak_tot_bytes FROM r JOIN memory m ON m.run_id = r.run_id AND m.main_pid = r.main_pid AND m.rec = r.peak_rec;
CREATE TABLE peak AS SELECT * FROM peak_query WHERE 0;
CREATE INDEX peak_by_run ON peak (run_id, main_pid);

-- sums over blocks of one kind, id, colour, line, arc and query, which the views by_*, peak_by_* and churn_by_* add up
CREATE VIEW block_groups_query AS
SELECT b.run_id AS run_id, b.main_pid AS main_pid, CASE WHEN b.type = 'n' THEN 'no free' ELSE 'with free' END AS kind, b.malid AS malid, b.color AS color, b.location AS location, b.pid AS pid, b.arc AS arc, q.qid AS qid, MIN(b.caller_object) AS caller_object, MIN(b.caller_function) AS caller_function, MIN(b.callee_object) AS callee_object, MIN(b.callee_function) AS callee_function, SUM(1) AS blocks, SUM(CASE WHEN b.type <> 'r' THEN 1 ELSE 0 END) AS allocs, SUM(CASE WHEN b.type <> 'r' THEN b.size ELSE 0 END) AS alloc_bytes, SUM(CASE WHEN b.type <> 'r' THEN b.tot_size ELSE 0 END) AS alloc_tot_bytes, SUM(CASE WHEN b.type = 'r' THEN 1 ELSE 0 END) AS resizes, SUM(CASE WHEN b.type = 'r' THEN b.size_change ELSE 0 END) AS resize_bytes, SUM(CASE WHEN b.end_type = 'f' THEN 1 ELSE 0 END) AS frees, SUM(CASE WHEN b.end_rec IS NULL THEN 1 ELSE 0 END) AS live_blocks, SUM(CASE WHEN b.end_rec IS NULL THEN b.size ELSE 0 END) AS live_bytes, SUM(CASE WHEN b.end_rec IS NULL THEN b.tot_size ELSE 0 END) AS live_tot_bytes, SUM(CASE WHEN b.rec <= p.peak_rec AND (b.end_rec IS NULL OR b.end_rec > p.peak_rec) THEN 1 ELSE 0 END) AS peak_blocks, SUM(CASE WHEN b.rec <= p.peak_rec AND (b.end_rec IS NULL OR b.end_rec > p.peak_rec) THEN b.size ELSE 0 END) AS peak_bytes, SUM(CASE WHEN b.rec <= p.peak_rec AND (b.end_rec IS NULL OR b.end_rec > p.peak_rec) THEN b.tot_size ELSE 0 END) AS peak_tot_bytes, SUM(CASE WHEN b.end_type = 'f' AND b.end_rec - b.rec <= 100 THEN 1 ELSE 0 END) AS short_lived, SUM(CASE WHEN b.end_type = 'f' AND b.end_rec - b.rec <= 100 THEN b.size ELSE 0 END) AS short_lived_bytes, SUM(CASE WHEN b.end_rec IS NOT NULL THEN 1 ELSE 0 END) AS ended, MIN(b.end_rec - b.rec) AS shortest_life, MAX(b.end_rec - b.rec) AS longest_life, SUM(COALESCE(b.end_rec - b.rec, 0)) AS together_lived FROM block b JOIN peak p ON p.run_id = b.run_id AND p.main_pid = b.main_pid LEFT JOIN queryevents q ON q.run_id = b.run_id AND q.main_pid = b.main_pid AND q.seq = b.query_seq GROUP BY b.run_id, b.main_pid, CASE WHEN b.type = 'n' THEN 'no free' ELSE 'with free' END, b.malid, b.color, b.location, b.pid, b.arc, q.qid;
CREATE TABLE block_groups AS SELECT * FROM block_groups_query WHERE 0;
CREATE INDEX block_groups_by_run ON block_groups (run_id, main_pid);

-- blocks made, mean size, freed and live at the end, by allocation id
CREATE VIEW by_id AS
WITH t AS (SELECT g.run_id, g.main_pid, g.malid, SUM(g.allocs) AS allocs, SUM(g.alloc_bytes) AS alloc_bytes, SUM(g.alloc_tot_bytes) AS alloc_tot_bytes, SUM(g.resizes) AS resizes, SUM(g.resize_bytes) AS resize_bytes, SUM(g.frees) AS frees, SUM(g.live_blocks) AS live_blocks, SUM(g.live_bytes) AS live_bytes, SUM(g.live_tot_bytes) AS live_tot_bytes FROM block_groups g GROUP BY g.run_id, g.main_pid, g.malid) SELECT t.run_id, t.main_pid, t.malid, COALESCE((SELECT MIN(n.id_name) FROM id_names n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.malid = t.malid), 'unknown id') AS id_name, t.allocs, t.alloc_bytes, t.alloc_tot_bytes, CASE WHEN t.allocs = 0 THEN 0 ELSE CAST(t.alloc_bytes / t.allocs AS BIGINT) END AS mean_bytes, t.resizes, t.resize_bytes, t.frees, t.live_blocks, t.live_bytes, t.live_tot_bytes FROM t;

-- what was live at the peak, by allocation id
CREATE VIEW peak_by_id AS
WITH t AS (SELECT g.run_id, g.main_pid, g.malid, SUM(g.peak_blocks) AS peak_blocks, SUM(g.peak_bytes) AS peak_bytes, SUM(g.peak_tot_bytes) AS peak_tot_bytes FROM block_groups g GROUP BY g.run_id, g.main_pid, g.malid) SELECT t.run_id, t.main_pid, t.malid, COALESCE((SELECT MIN(n.id_name) FROM id_names n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.malid = t.malid), 'unknown id') AS id_name, t.peak_blocks, t.peak_bytes, t.peak_tot_bytes FROM t WHERE t.peak_blocks > 0;

-- blocks freed within 100 memory records of their making, by allocation id
CREATE VIEW churn_by_id AS
WITH t AS (SELECT g.run_id, g.main_pid, g.malid, SUM(g.short_lived) AS short_lived, SUM(g.short_lived_bytes) AS short_lived_bytes, SUM(g.blocks) AS blocks FROM block_groups g GROUP BY g.run_id, g.main_pid, g.malid) SELECT t.run_id, t.main_pid, t.malid, COALESCE((SELECT MIN(n.id_name) FROM id_names n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.malid = t.malid), 'unknown id') AS id_name, t.short_lived, t.short_lived_bytes, t.blocks, 100 * t.short_lived / t.blocks AS percent_of_blocks FROM t WHERE t.short_lived > 0;

-- blocks made, mean size, freed and live at the end, by colour of an allocation id
CREATE VIEW by_color AS
WITH t AS (SELECT g.run_id, g.main_pid, g.malid, g.color, SUM(g.allocs) AS allocs, SUM(g.alloc_bytes) AS alloc_bytes, SUM(g.alloc_tot_bytes) AS alloc_tot_bytes, SUM(g.resizes) AS resizes, SUM(g.resize_bytes) AS resize_bytes, SUM(g.frees) AS frees, SUM(g.live_blocks) AS live_blocks, SUM(g.live_bytes) AS live_bytes, SUM(g.live_tot_bytes) AS live_tot_bytes FROM block_groups g GROUP BY g.run_id, g.main_pid, g.malid, g.color) SELECT t.run_id, t.main_pid, t.malid, COALESCE((SELECT MIN(n.id_name) FROM id_names n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.malid = t.malid), 'unknown id') AS id_name, t.color, COALESCE((SELECT MIN(n.color_name) FROM color n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.malid = t.malid AND n.color = t.color), 'unknown colour') AS color_name, t.allocs, t.alloc_bytes, t.alloc_tot_bytes, CASE WHEN t.allocs = 0 THEN 0 ELSE CAST(t.alloc_bytes / t.allocs AS BIGINT) END AS mean_bytes, t.resizes, t.resize_bytes, t.frees, t.live_blocks, t.live_bytes, t.live_tot_bytes FROM t;

-- what was live at the peak, by colour of an allocation id
CREATE VIEW peak_by_color AS
WITH t AS (SELECT g.run_id, g.main_pid, g.malid, g.color, SUM(g.peak_blocks) AS peak_blocks, SUM(g.peak_bytes) AS peak_bytes, SUM(g.peak_tot_bytes) AS peak_tot_bytes FROM block_groups g GROUP BY g.run_id, g.main_pid, g.malid, g.color) SELECT t.run_id, t.main_pid, t.malid, COALESCE((SELECT MIN(n.id_name) FROM id_names n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.malid = t.malid), 'unknown id') AS id_name, t.color, COALESCE((SELECT MIN(n.color_name) FROM color n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.malid = t.malid AND n.color = t.color), 'unknown colour') AS color_name, t.peak_blocks, t.peak_bytes, t.peak_tot_bytes FROM t WHERE t.peak_blocks > 0;

-- blocks freed within 100 memory records of their making, by colour of an allocation id
CREATE VIEW churn_by_color AS
WITH t AS (SELECT g.run_id, g.main_pid, g.malid, g.color, SUM(g.short_lived) AS short_lived, SUM(g.short_lived_bytes) AS short_lived_bytes, SUM(g.blocks) AS blocks FROM block_groups g GROUP BY g.run_id, g.main_pid, g.malid, g.color) SELECT t.run_id, t.main_pid, t.malid, COALESCE((SELECT MIN(n.id_name) FROM id_names n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.malid = t.malid), 'unknown id') AS id_name, t.color, COALESCE((SELECT MIN(n.color_name) FROM color n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.malid = t.malid AND n.color = t.color), 'unknown colour') AS color_name, t.short_lived, t.short_lived_bytes, t.blocks, 100 * t.short_lived / t.blocks AS percent_of_blocks FROM t WHERE t.short_lived > 0;

-- blocks made, mean size, freed and live at the end, by source line
CREATE VIEW by_line AS
WITH t AS (SELECT g.run_id, g.main_pid, g.location, SUM(g.allocs) AS allocs, SUM(g.alloc_bytes) AS alloc_bytes, SUM(g.alloc_tot_bytes) AS alloc_tot_bytes, SUM(g.resizes) AS resizes, SUM(g.resize_bytes) AS resize_bytes, SUM(g.frees) AS frees, SUM(g.live_blocks) AS live_blocks, SUM(g.live_bytes) AS live_bytes, SUM(g.live_tot_bytes) AS live_tot_bytes FROM block_groups g GROUP BY g.run_id, g.main_pid, g.location) SELECT t.run_id, t.main_pid, t.location, COALESCE((SELECT MIN(n.source_line) FROM hashloc n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.location = t.location), 'unknown line') AS source_line, t.allocs, t.alloc_bytes, t.alloc_tot_bytes, CASE WHEN t.allocs = 0 THEN 0 ELSE CAST(t.alloc_bytes / t.allocs AS BIGINT) END AS mean_bytes, t.resizes, t.resize_bytes, t.frees, t.live_blocks, t.live_bytes, t.live_tot_bytes FROM t;

-- what was live at the peak, by source line
CREATE VIEW peak_by_line AS
WITH t AS (SELECT g.run_id, g.main_pid, g.location, SUM(g.peak_blocks) AS peak_blocks, SUM(g.peak_bytes) AS peak_bytes, SUM(g.peak_tot_bytes) AS peak_tot_bytes FROM block_groups g GROUP BY g.run_id, g.main_pid, g.location) SELECT t.run_id, t.main_pid, t.location, COALESCE((SELECT MIN(n.source_line) FROM hashloc n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.location = t.location), 'unknown line') AS source_line, t.peak_blocks, t.peak_bytes, t.peak_tot_bytes FROM t WHERE t.peak_blocks > 0;

-- blocks freed within 100 memory records of their making, by source line
CREATE VIEW churn_by_line AS
WITH t AS (SELECT g.run_id, g.main_pid, g.location, SUM(g.short_lived) AS short_lived, SUM(g.short_lived_bytes) AS short_lived_bytes, SUM(g.blocks) AS blocks FROM block_groups g GROUP BY g.run_id, g.main_pid, g.location) SELECT t.run_id, t.main_pid, t.location, COALESCE((SELECT MIN(n.source_line) FROM hashloc n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.location = t.location), 'unknown line') AS source_line, t.short_lived, t.short_lived_bytes, t.blocks, 100 * t.short_lived / t.blocks AS percent_of_blocks FROM t WHERE t.short_lived > 0;

-- blocks made, mean size, freed and live at the end, by caller and callee of a process
CREATE VIEW by_arc AS
WITH t AS (SELECT g.run_id, g.main_pid, g.pid, g.arc, MIN(g.caller_object) AS caller_object, MIN(g.caller_function) AS caller_function, MIN(g.callee_object) AS callee_object, MIN(g.callee_function) AS callee_function, SUM(g.allocs) AS allocs, SUM(g.alloc_bytes) AS alloc_bytes, SUM(g.alloc_tot_bytes) AS alloc_tot_bytes, SUM(g.resizes) AS resizes, SUM(g.resize_bytes) AS resize_bytes, SUM(g.frees) AS frees, SUM(g.live_blocks) AS live_blocks, SUM(g.live_bytes) AS live_bytes, SUM(g.live_tot_bytes) AS live_tot_bytes FROM block_groups g GROUP BY g.run_id, g.main_pid, g.pid, g.arc) SELECT t.run_id, t.main_pid, t.pid, t.arc, COALESCE((SELECT MIN(n.caller_object_name || ':' || n.caller_function_name) FROM arcs n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.pid = t.pid AND n.arc = t.arc), (SELECT MIN(n.object_name || ':' || n.function_name) FROM functions n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.object = t.caller_object AND n.function_number = t.caller_function), CAST(t.caller_object AS VARCHAR(20)) || ':' || CAST(t.caller_function AS VARCHAR(20))) AS caller, COALESCE((SELECT MIN(n.callee_object_name || ':' || n.callee_function_name) FROM arcs n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.pid = t.pid AND n.arc = t.arc), (SELECT MIN(n.object_name || ':' || n.function_name) FROM functions n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.object = t.callee_object AND n.function_number = t.callee_function), CAST(t.callee_object AS VARCHAR(20)) || ':' || CAST(t.callee_function AS VARCHAR(20))) AS callee, t.allocs, t.alloc_bytes, t.alloc_tot_bytes, CASE WHEN t.allocs = 0 THEN 0 ELSE CAST(t.alloc_bytes / t.allocs AS BIGINT) END AS mean_bytes, t.resizes, t.resize_bytes, t.frees, t.live_blocks, t.live_bytes, t.live_tot_bytes FROM t;

-- what was live at the peak, by caller and callee of a process
CREATE VIEW peak_by_arc AS
WITH t AS (SELECT g.run_id, g.main_pid, g.pid, g.arc, MIN(g.caller_object) AS caller_object, MIN(g.caller_function) AS caller_function, MIN(g.callee_object) AS callee_object, MIN(g.callee_function) AS callee_function, SUM(g.peak_blocks) AS peak_blocks, SUM(g.peak_bytes) AS peak_bytes, SUM(g.peak_tot_bytes) AS peak_tot_bytes FROM block_groups g GROUP BY g.run_id, g.main_pid, g.pid, g.arc) SELECT t.run_id, t.main_pid, t.pid, t.arc, COALESCE((SELECT MIN(n.caller_object_name || ':' || n.caller_function_name) FROM arcs n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.pid = t.pid AND n.arc = t.arc), (SELECT MIN(n.object_name || ':' || n.function_name) FROM functions n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.object = t.caller_object AND n.function_number = t.caller_function), CAST(t.caller_object AS VARCHAR(20)) || ':' || CAST(t.caller_function AS VARCHAR(20))) AS caller, COALESCE((SELECT MIN(n.callee_object_name || ':' || n.callee_function_name) FROM arcs n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.pid = t.pid AND n.arc = t.arc), (SELECT MIN(n.object_name || ':' || n.function_name) FROM functions n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.object = t.callee_object AND n.function_number = t.callee_function), CAST(t.callee_object AS VARCHAR(20)) || ':' || CAST(t.callee_function AS VARCHAR(20))) AS callee, t.peak_blocks, t.peak_bytes, t.peak_tot_bytes FROM t WHERE t.peak_blocks > 0;

-- blocks freed within 100 memory records of their making, by caller and callee of a process
CREATE VIEW churn_by_arc AS
WITH t AS (SELECT g.run_id, g.main_pid, g.pid, g.arc, MIN(g.caller_object) AS caller_object, MIN(g.caller_function) AS caller_function, MIN(g.callee_object) AS callee_object, MIN(g.callee_function) AS callee_function, SUM(g.short_lived) AS short_lived, SUM(g.short_lived_bytes) AS short_lived_bytes, SUM(g.blocks) AS blocks FROM block_groups g GROUP BY g.run_id, g.main_pid, g.pid, g.arc) SELECT t.run_id, t.main_pid, t.pid, t.arc, COALESCE((SELECT MIN(n.caller_object_name || ':' || n.caller_function_name) FROM arcs n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.pid = t.pid AND n.arc = t.arc), (SELECT MIN(n.object_name || ':' || n.function_name) FROM functions n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.object = t.caller_object AND n.function_number = t.caller_function), CAST(t.caller_object AS VARCHAR(20)) || ':' || CAST(t.caller_function AS VARCHAR(20))) AS caller, COALESCE((SELECT MIN(n.callee_object_name || ':' || n.callee_function_name) FROM arcs n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.pid = t.pid AND n.arc = t.arc), (SELECT MIN(n.object_name || ':' || n.function_name) FROM functions n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.object = t.callee_object AND n.function_number = t.callee_function), CAST(t.callee_object AS VARCHAR(20)) || ':' || CAST(t.callee_function AS VARCHAR(20))) AS callee, t.short_lived, t.short_lived_bytes, t.blocks, 100 * t.short_lived / t.blocks AS percent_of_blocks FROM t WHERE t.short_lived > 0;

-- blocks made, mean size, freed and live at the end, by process
CREATE VIEW by_process AS
WITH t AS (SELECT g.run_id, g.main_pid, g.pid, SUM(g.allocs) AS allocs, SUM(g.alloc_bytes) AS alloc_bytes, SUM(g.alloc_tot_bytes) AS alloc_tot_bytes, SUM(g.resizes) AS resizes, SUM(g.resize_bytes) AS resize_bytes, SUM(g.frees) AS frees, SUM(g.live_blocks) AS live_blocks, SUM(g.live_bytes) AS live_bytes, SUM(g.live_tot_bytes) AS live_tot_bytes FROM block_groups g GROUP BY g.run_id, g.main_pid, g.pid) SELECT t.run_id, t.main_pid, t.pid, COALESCE((SELECT MIN(n.session_name) FROM process n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.pid = t.pid), 'default process') AS process_name, t.allocs, t.alloc_bytes, t.alloc_tot_bytes, CASE WHEN t.allocs = 0 THEN 0 ELSE CAST(t.alloc_bytes / t.allocs AS BIGINT) END AS mean_bytes, t.resizes, t.resize_bytes, t.frees, t.live_blocks, t.live_bytes, t.live_tot_bytes FROM t;

-- what was live at the peak, by process
CREATE VIEW peak_by_process AS
WITH t AS (SELECT g.run_id, g.main_pid, g.pid, SUM(g.peak_blocks) AS peak_blocks, SUM(g.peak_bytes) AS peak_bytes, SUM(g.peak_tot_bytes) AS peak_tot_bytes FROM block_groups g GROUP BY g.run_id, g.main_pid, g.pid) SELECT t.run_id, t.main_pid, t.pid, COALESCE((SELECT MIN(n.session_name) FROM process n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.pid = t.pid), 'default process') AS process_name, t.peak_blocks, t.peak_bytes, t.peak_tot_bytes FROM t WHERE t.peak_blocks > 0;

-- blocks freed within 100 memory records of their making, by process
CREATE VIEW churn_by_process AS
WITH t AS (SELECT g.run_id, g.main_pid, g.pid, SUM(g.short_lived) AS short_lived, SUM(g.short_lived_bytes) AS short_lived_bytes, SUM(g.blocks) AS blocks FROM block_groups g GROUP BY g.run_id, g.main_pid, g.pid) SELECT t.run_id, t.main_pid, t.pid, COALESCE((SELECT MIN(n.session_name) FROM process n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.pid = t.pid), 'default process') AS process_name, t.short_lived, t.short_lived_bytes, t.blocks, 100 * t.short_lived / t.blocks AS percent_of_blocks FROM t WHERE t.short_lived > 0;

-- blocks made, mean size, freed and live at the end, by SQL statement
CREATE VIEW by_query AS
WITH t AS (SELECT g.run_id, g.main_pid, g.qid, SUM(g.allocs) AS allocs, SUM(g.alloc_bytes) AS alloc_bytes, SUM(g.alloc_tot_bytes) AS alloc_tot_bytes, SUM(g.resizes) AS resizes, SUM(g.resize_bytes) AS resize_bytes, SUM(g.frees) AS frees, SUM(g.live_blocks) AS live_blocks, SUM(g.live_bytes) AS live_bytes, SUM(g.live_tot_bytes) AS live_tot_bytes FROM block_groups g GROUP BY g.run_id, g.main_pid, g.qid) SELECT t.run_id, t.main_pid, t.qid, CASE WHEN t.qid IS NULL THEN '(no finished SQL operation)' ELSE COALESCE((SELECT MIN(n.query_text) FROM queries n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.qid = t.qid), 'unknown query') END AS query_text, t.allocs, t.alloc_bytes, t.alloc_tot_bytes, CASE WHEN t.allocs = 0 THEN 0 ELSE CAST(t.alloc_bytes / t.allocs AS BIGINT) END AS mean_bytes, t.resizes, t.resize_bytes, t.frees, t.live_blocks, t.live_bytes, t.live_tot_bytes FROM t;

-- what was live at the peak, by SQL statement
CREATE VIEW peak_by_query AS
WITH t AS (SELECT g.run_id, g.main_pid, g.qid, SUM(g.peak_blocks) AS peak_blocks, SUM(g.peak_bytes) AS peak_bytes, SUM(g.peak_tot_bytes) AS peak_tot_bytes FROM block_groups g GROUP BY g.run_id, g.main_pid, g.qid) SELECT t.run_id, t.main_pid, t.qid, CASE WHEN t.qid IS NULL THEN '(no finished SQL operation)' ELSE COALESCE((SELECT MIN(n.query_text) FROM queries n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.qid = t.qid), 'unknown query') END AS query_text, t.peak_blocks, t.peak_bytes, t.peak_tot_bytes FROM t WHERE t.peak_blocks > 0;

-- blocks freed within 100 memory records of their making, by SQL statement
CREATE VIEW churn_by_query AS
WITH t AS (SELECT g.run_id, g.main_pid, g.qid, SUM(g.short_lived) AS short_lived, SUM(g.short_lived_bytes) AS short_lived_bytes, SUM(g.blocks) AS blocks FROM block_groups g GROUP BY g.run_id, g.main_pid, g.qid) SELECT t.run_id, t.main_pid, t.qid, CASE WHEN t.qid IS NULL THEN '(no finished SQL operation)' ELSE COALESCE((SELECT MIN(n.query_text) FROM queries n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.qid = t.qid), 'unknown query') END AS query_text, t.short_lived, t.short_lived_bytes, t.blocks, 100 * t.short_lived / t.blocks AS percent_of_blocks FROM t WHERE t.short_lived > 0;

-- memory with an obligation to free against memory without
CREATE VIEW with_free_no_free AS
SELECT g.run_id, g.main_pid, g.kind, SUM(g.allocs) AS allocs, SUM(g.alloc_bytes) AS alloc_bytes, SUM(g.alloc_tot_bytes) AS alloc_tot_bytes, SUM(g.frees) AS frees, SUM(g.live_blocks) AS live_blocks, SUM(g.live_bytes) AS live_bytes, SUM(g.live_tot_bytes) AS live_tot_bytes FROM block_groups g GROUP BY g.run_id, g.main_pid, g.kind;

-- bytes lost to the allocator's rounding, by allocation id
CREATE VIEW rounding_by_id AS
SELECT run_id, main_pid, malid, id_name, allocs, alloc_bytes, alloc_tot_bytes - alloc_bytes AS rounding_bytes, CASE WHEN alloc_bytes = 0 THEN 0 ELSE CAST(100 * (alloc_tot_bytes - alloc_bytes) / alloc_bytes AS BIGINT) END AS rounding_percent, live_tot_bytes - live_bytes AS live_rounding_bytes FROM by_id;

-- how many memory records blocks lived, by allocation id
CREATE VIEW lifetime_by_id AS
WITH t AS (SELECT g.run_id, g.main_pid, g.malid, MIN(g.shortest_life) AS shortest, MAX(g.longest_life) AS longest, SUM(g.ended) AS ended, SUM(g.together_lived) AS together_lived, SUM(g.live_blocks) AS live_blocks FROM block_groups g GROUP BY g.run_id, g.main_pid, g.malid) SELECT t.run_id, t.main_pid, t.malid, COALESCE((SELECT MIN(n.id_name) FROM id_names n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.malid = t.malid), 'unknown id') AS id_name, t.ended, t.shortest, CASE WHEN t.ended = 0 THEN NULL ELSE CAST(t.together_lived / t.ended AS BIGINT) END AS mean, t.longest, t.live_blocks AS never_ended FROM t;

-- number and bytes of blocks by how many memory records they lived
CREATE VIEW lifetimes AS
WITH t AS (SELECT b.run_id, b.main_pid, b.size, CASE WHEN b.end_rec IS NULL THEN NULL WHEN b.end_rec - b.rec <= 1 THEN 1 WHEN b.end_rec - b.rec <= 10 THEN 10 WHEN b.end_rec - b.rec <= 100 THEN 100 WHEN b.end_rec - b.rec <= 1000 THEN 1000 WHEN b.end_rec - b.rec <= 10000 THEN 10000 WHEN b.end_rec - b.rec <= 100000 THEN 100000 ELSE 1000000000 END AS up_to FROM block b) SELECT t.run_id, t.main_pid, CASE WHEN t.up_to IS NULL THEN 'live at the end' WHEN t.up_to = 1000000000 THEN 'more' ELSE 'up to ' || CAST(t.up_to AS VARCHAR(20)) END AS records, t.up_to, COUNT(*) AS blocks, SUM(t.size) AS bytes FROM t GROUP BY t.run_id, t.main_pid, t.up_to;

-- every block that is live at the end, with the names of its owner
CREATE VIEW live_blocks AS
SELECT t.run_id, t.main_pid, t.rec, t.size, t.tot_size, t.malid, COALESCE((SELECT MIN(n.id_name) FROM id_names n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.malid = t.malid), 'unknown id') AS id_name, t.color, COALESCE((SELECT MIN(n.color_name) FROM color n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.malid = t.malid AND n.color = t.color), 'unknown colour') AS color_name, t.location, COALESCE((SELECT MIN(n.source_line) FROM hashloc n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.location = t.location), 'unknown line') AS source_line, t.pid, COALESCE((SELECT MIN(n.session_name) FROM process n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.pid = t.pid), 'default process') AS process_name, t.arc, COALESCE((SELECT MIN(n.caller_object_name || ':' || n.caller_function_name) FROM arcs n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.pid = t.pid AND n.arc = t.arc), (SELECT MIN(n.object_name || ':' || n.function_name) FROM functions n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.object = t.caller_object AND n.function_number = t.caller_function), CAST(t.caller_object AS VARCHAR(20)) || ':' || CAST(t.caller_function AS VARCHAR(20))) AS caller, COALESCE((SELECT MIN(n.callee_object_name || ':' || n.callee_function_name) FROM arcs n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.pid = t.pid AND n.arc = t.arc), (SELECT MIN(n.object_name || ':' || n.function_name) FROM functions n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.object = t.callee_object AND n.function_number = t.callee_function), CAST(t.callee_object AS VARCHAR(20)) || ':' || CAST(t.callee_function AS VARCHAR(20))) AS callee FROM block t WHERE t.end_rec IS NULL;

-- growth of the heap and its gaps, and who was running
CREATE VIEW heap_growth AS
SELECT t.run_id, t.main_pid, t.sbrk_row, t.record, t.time, CASE WHEN t.type = 'S' THEN 'growth' ELSE 'gap' END AS kind, CASE WHEN t.type = 'S' THEN t.size_or_c_sbrk ELSE t.size_or_c_sbrk - t.addr_or_l_sbrk END AS bytes, t.sbrk_total, t.gap_total, t.pid, COALESCE((SELECT MIN(n.session_name) FROM process n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.pid = t.pid), 'default process') AS process_name, t.arc, COALESCE((SELECT MIN(n.caller_object_name || ':' || n.caller_function_name) FROM arcs n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.pid = t.pid AND n.arc = t.arc), (SELECT MIN(n.object_name || ':' || n.function_name) FROM functions n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.object = t.caller_object AND n.function_number = t.caller_function), CAST(t.caller_object AS VARCHAR(20)) || ':' || CAST(t.caller_function AS VARCHAR(20))) AS caller, COALESCE((SELECT MIN(n.callee_object_name || ':' || n.callee_function_name) FROM arcs n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.pid = t.pid AND n.arc = t.arc), (SELECT MIN(n.object_name || ':' || n.function_name) FROM functions n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.object = t.callee_object AND n.function_number = t.callee_function), CAST(t.callee_object AS VARCHAR(20)) || ':' || CAST(t.callee_function AS VARCHAR(20))) AS callee FROM sbrk t;

-- growth of the heap by caller and callee
CREATE VIEW heap_by_arc AS
WITH t AS (SELECT b.run_id, b.main_pid, b.pid, b.arc, MIN(b.caller_object) AS caller_object, MIN(b.caller_function) AS caller_function, MIN(b.callee_object) AS callee_object, MIN(b.callee_function) AS callee_function, COUNT(*) AS growths, SUM(b.size_or_c_sbrk) AS bytes FROM sbrk b WHERE b.type = 'S' GROUP BY b.run_id, b.main_pid, b.pid, b.arc) SELECT t.run_id, t.main_pid, t.pid, t.arc, COALESCE((SELECT MIN(n.caller_object_name || ':' || n.caller_function_name) FROM arcs n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.pid = t.pid AND n.arc = t.arc), (SELECT MIN(n.object_name || ':' || n.function_name) FROM functions n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.object = t.caller_object AND n.function_number = t.caller_function), CAST(t.caller_object AS VARCHAR(20)) || ':' || CAST(t.caller_function AS VARCHAR(20))) AS caller, COALESCE((SELECT MIN(n.callee_object_name || ':' || n.callee_function_name) FROM arcs n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.pid = t.pid AND n.arc = t.arc), (SELECT MIN(n.object_name || ':' || n.function_name) FROM functions n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.object = t.callee_object AND n.function_number = t.callee_function), CAST(t.callee_object AS VARCHAR(20)) || ':' || CAST(t.callee_function AS VARCHAR(20))) AS callee, t.growths, t.bytes FROM t;

-- live memory at every marker and the change since the one before
CREATE VIEW marker_change AS
WITH t AS (SELECT k.run_id, k.main_pid, k.marker, k.time, k.type, k.subtype, k.marker_text, k.rec, COALESCE(LAG(k.rec) OVER (PARTITION BY k.run_id, k.main_pid ORDER BY k.marker), 0) AS from_rec FROM marker k) SELECT t.run_id, t.main_pid, t.marker, t.time, t.type, t.subtype, t.marker_text, t.from_rec, t.rec, CASE WHEN t.rec > 0 THEN COALESCE((SELECT MAX(m.global_live_size + m.global_nf_size) FROM memory m WHERE m.run_id = t.run_id AND m.main_pid = t.main_pid AND m.rec = t.rec), 0) ELSE 0 END AS live_bytes, CASE WHEN t.rec > 0 THEN COALESCE((SELECT MAX(m.global_live_size + m.global_nf_size) FROM memory m WHERE m.run_id = t.run_id AND m.main_pid = t.main_pid AND m.rec = t.rec), 0) ELSE 0 END - CASE WHEN t.from_rec > 0 THEN COALESCE((SELECT MAX(m.global_live_size + m.global_nf_size) FROM memory m WHERE m.run_id = t.run_id AND m.main_pid = t.main_pid AND m.rec = t.from_rec), 0) ELSE 0 END AS live_change FROM t;

-- change of live memory between a marker and the one before, by allocation id
CREATE VIEW marker_change_by_id AS
WITH t AS (SELECT k.run_id, k.main_pid, k.marker, k.time, k.type, k.subtype, k.marker_text, k.rec, COALESCE(LAG(k.rec) OVER (PARTITION BY k.run_id, k.main_pid ORDER BY k.marker), 0) AS from_rec FROM marker k) , c AS (SELECT t.run_id, t.main_pid, t.marker, m.malid, COUNT(*) AS records, SUM(CASE WHEN m.type IN ('a', 'n') THEN 1 ELSE 0 END) AS allocs, SUM(m.size_change) AS live_change FROM t JOIN memory m ON m.run_id = t.run_id AND m.main_pid = t.main_pid AND m.rec > t.from_rec AND m.rec <= t.rec GROUP BY t.run_id, t.main_pid, t.marker, m.malid) SELECT t.run_id, t.main_pid, t.marker, t.malid, COALESCE((SELECT MIN(n.id_name) FROM id_names n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND n.malid = t.malid), 'unknown id') AS id_name, t.records, t.allocs, t.live_change FROM c t;

-- who, when and how much, per trace of a run
CREATE VIEW run_summary_query AS
WITH m AS (SELECT run_id, main_pid, MAX(rec) AS records, SUM(CASE WHEN type IN ('a', 'n') THEN 1 ELSE 0 END) AS allocs, SUM(CASE WHEN type IN ('a', 'n') THEN size ELSE 0 END) AS alloc_bytes, SUM(CASE WHEN type = 'f' THEN 1 ELSE 0 END) AS frees, SUM(CASE WHEN type = 'f' AND linked_rec = 0 THEN 1 ELSE 0 END) AS frees_without_block, SUM(CASE WHEN type = 'r' AND linked_rec = 0 THEN 1 ELSE 0 END) AS resizes_without_block FROM memory GROUP BY run_id, main_pid) SELECT r.run_id, r.main_pid, r.program, r.environment, r.account, r.host, r.user_name, r.description, r.start_time, r.end_time, COALESCE(m.records, 0) AS records, COALESCE(m.allocs, 0) AS allocs, COALESCE(m.alloc_bytes, 0) AS alloc_bytes, COALESCE(m.frees, 0) AS frees, COALESCE(m.frees_without_block, 0) AS frees_without_block, COALESCE(m.resizes_without_block, 0) AS resizes_without_block, (SELECT COUNT(*) FROM process x WHERE x.run_id = r.run_id AND x.main_pid = r.main_pid) AS processes, (SELECT COUNT(*) FROM malid x WHERE x.run_id = r.run_id AND x.main_pid = r.main_pid) AS ids, p.peak_rec, COALESCE(p.peak_bytes, 0) AS peak_bytes, COALESCE(p.peak_tot_bytes, 0) AS peak_tot_bytes, p.peak_time, COALESCE((SELECT MAX(x.global_live_size + x.global_nf_size) FROM memory x WHERE x.run_id = r.run_id AND x.main_pid = r.main_pid AND x.rec = m.records), 0) AS live_bytes, COALESCE((SELECT MAX(x.global_live_tot_size + x.global_nf_tot_size) FROM memory x WHERE x.run_id = r.run_id AND x.main_pid = r.main_pid AND x.rec = m.records), 0) AS live_tot_bytes, COALESCE((SELECT MAX(x.sbrk_total) FROM sbrk x WHERE x.run_id = r.run_id AND x.main_pid = r.main_pid), 0) AS heap_bytes, COALESCE((SELECT MAX(x.gap_total) FROM sbrk x WHERE x.run_id = r.run_id AND x.main_pid = r.main_pid), 0) AS gap_bytes FROM runs r LEFT JOIN m ON m.run_id = r.run_id AND m.main_pid = r.main_pid LEFT JOIN peak p ON p.run_id = r.run_id AND p.main_pid = r.main_pid;
CREATE TABLE run_summary AS SELECT * FROM run_summary_query WHERE 0;
CREATE INDEX run_summary_by_run ON run_summary (run_id, main_pid);

-- what the trace of a run lacks: frees without a block, unknown ids and lines, its end
CREATE VIEW lost AS
WITH u AS (SELECT g.run_id, g.main_pid, SUM(CASE WHEN i.malid IS NULL THEN g.blocks ELSE 0 END) AS of_unknown_ids, SUM(CASE WHEN l.location IS NULL THEN g.blocks ELSE 0 END) AS of_unknown_lines FROM block_groups g LEFT JOIN (SELECT DISTINCT run_id, main_pid, malid FROM malid) i ON i.run_id = g.run_id AND i.main_pid = g.main_pid AND i.malid = g.malid LEFT JOIN (SELECT DISTINCT run_id, main_pid, location FROM hashloc) l ON l.run_id = g.run_id AND l.main_pid = g.main_pid AND l.location = g.location GROUP BY g.run_id, g.main_pid) SELECT r.run_id, r.main_pid, r.frees_without_block, r.resizes_without_block, COALESCE(u.of_unknown_ids, 0) AS blocks_of_unknown_ids, COALESCE(u.of_unknown_lines, 0) AS blocks_of_unknown_lines, CASE WHEN EXISTS (SELECT 1 FROM marker k WHERE k.run_id = r.run_id AND k.main_pid = r.main_pid AND k.type = 'Record' AND k.subtype = 'End') THEN 1 ELSE 0 END AS replayed_to_its_end FROM run_summary r LEFT JOIN u ON u.run_id = r.run_id AND u.main_pid = r.main_pid;
