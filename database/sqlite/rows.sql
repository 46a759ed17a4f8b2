CREATE TABLE IF NOT EXISTS memory (
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
INSERT OR IGNORE INTO row_table VALUES ('memory');
CREATE TABLE IF NOT EXISTS sbrk (
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
INSERT OR IGNORE INTO row_table VALUES ('sbrk');
CREATE TABLE IF NOT EXISTS queryevents (
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
INSERT OR IGNORE INTO row_table VALUES ('queryevents');
CREATE TABLE IF NOT EXISTS marker (
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
INSERT OR IGNORE INTO row_table VALUES ('marker');
CREATE TABLE IF NOT EXISTS freemem (
  run_id TEXT NOT NULL,
  main_pid INTEGER NOT NULL,
  alloc_rec INTEGER NOT NULL,
  free_rec INTEGER NOT NULL,
  type TEXT NOT NULL
);
INSERT OR IGNORE INTO row_table VALUES ('freemem');
CREATE TABLE IF NOT EXISTS arena (
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
INSERT OR IGNORE INTO row_table VALUES ('arena');
CREATE TABLE IF NOT EXISTS arcs (
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
INSERT OR IGNORE INTO row_table VALUES ('arcs');
CREATE TABLE IF NOT EXISTS symbols (
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
INSERT OR IGNORE INTO row_table VALUES ('symbols');
CREATE TABLE IF NOT EXISTS flowdata (
  run_id TEXT NOT NULL,
  main_pid INTEGER NOT NULL,
  pid INTEGER NOT NULL,
  flow INTEGER NOT NULL,
  ordinal INTEGER NOT NULL,
  group_size INTEGER NOT NULL,
  group_count INTEGER NOT NULL,
  symbol_lines TEXT NOT NULL
);
INSERT OR IGNORE INTO row_table VALUES ('flowdata');
CREATE TABLE IF NOT EXISTS flow (
  run_id TEXT NOT NULL,
  main_pid INTEGER NOT NULL,
  pid INTEGER NOT NULL,
  flow INTEGER NOT NULL,
  depth INTEGER NOT NULL,
  record INTEGER NOT NULL,
  arc INTEGER NOT NULL,
  direction TEXT NOT NULL
);
INSERT OR IGNORE INTO row_table VALUES ('flow');
CREATE TABLE IF NOT EXISTS process (
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
INSERT OR IGNORE INTO row_table VALUES ('process');
CREATE TABLE IF NOT EXISTS hashloc (
  run_id TEXT NOT NULL,
  main_pid INTEGER NOT NULL,
  location INTEGER NOT NULL,
  source_line TEXT NOT NULL
);
INSERT OR IGNORE INTO row_table VALUES ('hashloc');
CREATE TABLE IF NOT EXISTS malid (
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
INSERT OR IGNORE INTO row_table VALUES ('malid');
CREATE TABLE IF NOT EXISTS color (
  run_id TEXT NOT NULL,
  main_pid INTEGER NOT NULL,
  malid INTEGER NOT NULL,
  color INTEGER NOT NULL,
  color_name TEXT NOT NULL
);
INSERT OR IGNORE INTO row_table VALUES ('color');
CREATE TABLE IF NOT EXISTS queries (
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
INSERT OR IGNORE INTO row_table VALUES ('queries');
CREATE TABLE IF NOT EXISTS runs (
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
INSERT OR IGNORE INTO row_table VALUES ('runs');
CREATE TABLE IF NOT EXISTS objects (
  run_id TEXT NOT NULL,
  main_pid INTEGER NOT NULL,
  object INTEGER NOT NULL,
  object_name TEXT NOT NULL
);
INSERT OR IGNORE INTO row_table VALUES ('objects');
CREATE TABLE IF NOT EXISTS functions (
  run_id TEXT NOT NULL,
  main_pid INTEGER NOT NULL,
  object_name TEXT NOT NULL,
  object INTEGER NOT NULL,
  function_number INTEGER NOT NULL,
  function_name TEXT NOT NULL
);
INSERT OR IGNORE INTO row_table VALUES ('functions');
-- What the tables of rows have besides their columns, which the catalogue of the CSV tables gives.
CREATE INDEX IF NOT EXISTS memory_by_rec ON memory (run_id, main_pid, rec);
CREATE INDEX IF NOT EXISTS freemem_by_alloc ON freemem (run_id, main_pid, alloc_rec, free_rec, type);

-- Every block (a, n) and every resize of one (r), with the record that ended it.
CREATE VIEW IF NOT EXISTS block AS
SELECT m.run_id, m.main_pid, m.rec, m.type, m.malid, m.color, m.location, m.pid, m.arc,
  m.caller_object, m.caller_function, m.callee_object, m.callee_function, m.query_seq, m.size,
  m.tot_size, m.size_change, f.free_rec AS end_rec, f.type AS end_type
FROM memory m LEFT JOIN freemem f
  ON f.run_id = m.run_id AND f.main_pid = m.main_pid AND f.alloc_rec = m.rec
WHERE m.type IN ('a', 'n') OR (m.type = 'r' AND m.linked_rec <> 0);
