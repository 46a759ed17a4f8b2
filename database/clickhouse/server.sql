-- What the loads of runs write. Every row has the number of its load, `import`: it ascends in the order
-- of the loads, and the entry in import_stored is written last. Rows of loads without an entry, and of
-- loads that are not the newest of their run, are seen by no view. All rows of a run are on one shard.
-- Names stand beside the places they have in the lists, so that no view needs a join.
CREATE TABLE IF NOT EXISTS import_stored (
  run String,
  import Int64,
  deleted Int64,
  imported_at String,
  source String,
  complete Int64,
  traces Int64,
  from_rows Int64,
  records Int64,
  allocated_blocks Int64,
  allocated_bytes Int64,
  allocated_tot_bytes Int64,
  leaked_blocks Int64,
  leaked_bytes Int64,
  leaked_tot_bytes Int64,
  live_blocks Int64,
  live_bytes Int64,
  live_tot_bytes Int64,
  peak_blocks Int64,
  peak_bytes Int64,
  peak_tot_bytes Int64,
  row_count Nullable(Int64),
  label_keys Array(String),
  label_values Array(String)
) ENGINE = MergeTree PARTITION BY sipHash64(run) % 16 ORDER BY (run, import);

CREATE TABLE IF NOT EXISTS trace_stored (
  run String,
  import Int64,
  trace Int64,
  release String,
  complete Int64,
  run_id String,
  pid Int64,
  program String,
  environment String,
  account String,
  host String,
  user String,
  description String,
  start_time String,
  end_time String,
  records Int64,
  heap_bytes Int64,
  gap_bytes Int64,
  from_rows Int64,
  peak_blocks Int64,
  peak_bytes Int64,
  peak_tot_bytes Int64,
  peak_record Int64,
  peak_time String,
  total_allocated_blocks Int64,
  total_allocated_bytes Int64,
  total_allocated_tot_bytes Int64,
  total_freed_blocks Int64,
  total_freed_bytes Int64,
  total_freed_tot_bytes Int64,
  total_leaked_blocks Int64,
  total_leaked_bytes Int64,
  total_leaked_tot_bytes Int64,
  total_reset_blocks Int64,
  total_reset_bytes Int64,
  total_reset_tot_bytes Int64,
  total_released_blocks Int64,
  total_released_bytes Int64,
  total_released_tot_bytes Int64,
  total_live_blocks Int64,
  total_live_bytes Int64,
  total_live_tot_bytes Int64,
  total_peak_blocks Int64,
  total_peak_bytes Int64,
  total_peak_tot_bytes Int64,
  total_temporary_blocks Int64,
  total_temporary_bytes Int64,
  total_temporary_tot_bytes Int64,
  total_resizes Int64
) ENGINE = MergeTree PARTITION BY sipHash64(run) % 16 ORDER BY (run, import, trace);

CREATE TABLE IF NOT EXISTS block_group_stored (
  run String,
  import Int64,
  trace Int64,
  place Int64,
  pid Int64,
  function_place Int64,
  id_name String,
  color_name String,
  line_name String,
  function_name String,
  process_pid Int64,
  process_name String,
  query_text String,
  leaked_blocks Int64,
  leaked_bytes Int64,
  leaked_tot_bytes Int64,
  no_free Int64,
  id_place Int64,
  color_place Int64,
  line_place Int64,
  path_place Int64,
  process_place Int64,
  query_place Int64,
  resizes Int64,
  made_blocks Int64,
  made_bytes Int64,
  made_tot_bytes Int64,
  freed_blocks Int64,
  freed_bytes Int64,
  freed_tot_bytes Int64,
  left_blocks Int64,
  left_bytes Int64,
  left_tot_bytes Int64,
  reset_blocks Int64,
  reset_bytes Int64,
  reset_tot_bytes Int64,
  released_blocks Int64,
  released_bytes Int64,
  released_tot_bytes Int64,
  live_blocks Int64,
  live_bytes Int64,
  live_tot_bytes Int64,
  peak_blocks Int64,
  peak_bytes Int64,
  peak_tot_bytes Int64,
  temporary_blocks Int64,
  temporary_bytes Int64,
  temporary_tot_bytes Int64
) ENGINE = MergeTree PARTITION BY sipHash64(run) % 16 ORDER BY (run, import, trace, place);

-- What the groups of a name hold together, by the kind of name first: for questions about all runs.
CREATE TABLE IF NOT EXISTS name_sum_stored (
  run String,
  import Int64,
  key String,
  trace Int64,
  place Int64,
  program String,
  host String,
  name String,
  allocated_bytes Int64,
  leaked_bytes Int64,
  live_bytes Int64,
  peak_bytes Int64,
  temporary_bytes Int64
) ENGINE = MergeTree PARTITION BY sipHash64(run) % 16 ORDER BY (key, run, import, trace, place);

-- The other lists of a profile: the members of an entry that are numbers, and those that are texts.
CREATE TABLE IF NOT EXISTS list_stored (
  run String,
  import Int64,
  list String,
  trace Int64,
  place Int64,
  pid Int64,
  numbers Array(Int64),
  texts Array(String)
) ENGINE = MergeTree PARTITION BY sipHash64(run) % 16 ORDER BY (run, import, list, trace, place);

CREATE TABLE IF NOT EXISTS memory_stored (
  run String,
  import Int64,
  main_pid Int64,
  time String,
  type String,
  rec Int64,
  rec_thousands Int64,
  pid Int64,
  arc Int64,
  flow Int64,
  depth Int64,
  caller_object Int64,
  caller_function Int64,
  callee_object Int64,
  callee_function Int64,
  hosk_call String,
  hosk_symbol Int64,
  hosk_args String,
  query_seq Int64,
  location Int64,
  malid Int64,
  color Int64,
  addr Int64,
  size_change Int64,
  tot_size_change Int64,
  size Int64,
  tot_size Int64,
  addr2 Int64,
  linked_rec Int64,
  color_live_size Int64,
  color_live_tot_size Int64,
  color_live_count Int64,
  color_peak_size Int64,
  color_peak_tot_size Int64,
  color_mem_size Int64,
  color_mem_tot_size Int64,
  color_rec Int64,
  color_rec_tens Int64,
  malid_live_size Int64,
  malid_live_tot_size Int64,
  malid_live_count Int64,
  malid_peak_size Int64,
  malid_peak_tot_size Int64,
  malid_mem_size Int64,
  malid_mem_tot_size Int64,
  malid_rec Int64,
  malid_rec_hundreds Int64,
  malid_sum_size Int64,
  malid_sum_tot_size Int64,
  malid_sum_count Int64,
  process_live_size Int64,
  process_live_tot_size Int64,
  process_live_count Int64,
  process_peak_size Int64,
  process_peak_tot_size Int64,
  process_mem_size Int64,
  process_mem_tot_size Int64,
  process_rec Int64,
  process_rec_hundreds Int64,
  process_sum_size Int64,
  process_sum_tot_size Int64,
  process_sum_count Int64,
  process_malid_live_size Int64,
  process_malid_live_tot_size Int64,
  process_malid_live_count Int64,
  process_malid_mem_size Int64,
  process_malid_mem_tot_size Int64,
  process_malid_rec Int64,
  process_malid_rec_hundreds Int64,
  process_color_live_size Int64,
  process_color_live_tot_size Int64,
  process_color_live_count Int64,
  process_color_mem_size Int64,
  process_color_mem_tot_size Int64,
  process_color_rec Int64,
  process_color_rec_tens Int64,
  global_live_size Int64,
  global_live_tot_size Int64,
  global_live_count Int64,
  global_peak_size Int64,
  global_peak_tot_size Int64,
  global_nf_size Int64,
  global_nf_tot_size Int64,
  global_nf_count Int64,
  sbrk_total Int64,
  sbrk_count Int64,
  gap_total Int64,
  gap_count Int64
) ENGINE = MergeTree PARTITION BY sipHash64(run) % 16 ORDER BY (run, import, main_pid, rec);

CREATE TABLE IF NOT EXISTS sbrk_stored (
  run String,
  import Int64,
  main_pid Int64,
  time String,
  record Int64,
  type String,
  sbrk_row Int64,
  record_again Int64,
  pid Int64,
  arc Int64,
  flow Int64,
  depth Int64,
  caller_object Int64,
  caller_function Int64,
  callee_object Int64,
  callee_function Int64,
  hosk_call String,
  hosk_symbol Int64,
  hosk_args String,
  query_seq Int64,
  addr_or_l_sbrk Int64,
  size_or_c_sbrk Int64,
  sbrk_total Int64,
  sbrk_count Int64,
  gap_total Int64,
  gap_count Int64
) ENGINE = MergeTree PARTITION BY sipHash64(run) % 16 ORDER BY (run, import, main_pid, record);

CREATE TABLE IF NOT EXISTS queryevents_stored (
  run String,
  import Int64,
  main_pid Int64,
  seq Int64,
  time String,
  qid Int64,
  linked_qid Int64,
  type String,
  start_sbrk_rows Int64,
  end_sbrk_rows Int64,
  start_rec Int64,
  end_rec Int64,
  pid Int64,
  arc Int64,
  flow Int64,
  depth Int64,
  caller_object Int64,
  caller_function Int64,
  callee_object Int64,
  callee_function Int64,
  hosk_call String,
  hosk_symbol Int64,
  hosk_args String,
  query_seq Int64
) ENGINE = MergeTree PARTITION BY sipHash64(run) % 16 ORDER BY (run, import, main_pid);

CREATE TABLE IF NOT EXISTS marker_stored (
  run String,
  import Int64,
  main_pid Int64,
  marker Int64,
  rec Int64,
  last_rec Int64,
  time String,
  type String,
  subtype String,
  marker_text String
) ENGINE = MergeTree PARTITION BY sipHash64(run) % 16 ORDER BY (run, import, main_pid, rec);

CREATE TABLE IF NOT EXISTS freemem_stored (
  run String,
  import Int64,
  main_pid Int64,
  alloc_rec Int64,
  free_rec Int64,
  type String
) ENGINE = MergeTree PARTITION BY sipHash64(run) % 16 ORDER BY (run, import, main_pid, alloc_rec);

CREATE TABLE IF NOT EXISTS arena_stored (
  run String,
  import Int64,
  main_pid Int64,
  time String,
  record Int64,
  arena_row Int64,
  pid Int64,
  arc Int64,
  flow Int64,
  depth Int64,
  caller_object Int64,
  caller_function Int64,
  callee_object Int64,
  callee_function Int64,
  hosk_call String,
  hosk_symbol Int64,
  hosk_args String,
  query_seq Int64,
  arena Int64,
  used Int64,
  freed Int64
) ENGINE = MergeTree PARTITION BY sipHash64(run) % 16 ORDER BY (run, import, main_pid, record);

CREATE TABLE IF NOT EXISTS arcs_stored (
  run String,
  import Int64,
  main_pid Int64,
  pid Int64,
  arc Int64,
  caller_object_name String,
  caller_object Int64,
  caller_function Int64,
  caller_function_name String,
  callee_object_name String,
  callee_object Int64,
  callee_function Int64,
  callee_function_name String
) ENGINE = MergeTree PARTITION BY sipHash64(run) % 16 ORDER BY (run, import, main_pid);

CREATE TABLE IF NOT EXISTS symbols_stored (
  run String,
  import Int64,
  main_pid Int64,
  pid Int64,
  flow Int64,
  ordinal Int64,
  sym Int64,
  size Int64,
  category String,
  flags Int64,
  declaration String
) ENGINE = MergeTree PARTITION BY sipHash64(run) % 16 ORDER BY (run, import, main_pid);

CREATE TABLE IF NOT EXISTS flowdata_stored (
  run String,
  import Int64,
  main_pid Int64,
  pid Int64,
  flow Int64,
  ordinal Int64,
  group_size Int64,
  group_count Int64,
  symbol_lines String
) ENGINE = MergeTree PARTITION BY sipHash64(run) % 16 ORDER BY (run, import, main_pid);

CREATE TABLE IF NOT EXISTS flow_stored (
  run String,
  import Int64,
  main_pid Int64,
  pid Int64,
  flow Int64,
  depth Int64,
  record Int64,
  arc Int64,
  direction String
) ENGINE = MergeTree PARTITION BY sipHash64(run) % 16 ORDER BY (run, import, main_pid, record);

CREATE TABLE IF NOT EXISTS process_stored (
  run String,
  import Int64,
  main_pid Int64,
  pid Int64,
  session_name String,
  malid Int64,
  xmlid Int64,
  parent Int64,
  start_time String,
  end_time String,
  start_record Int64,
  end_record Int64
) ENGINE = MergeTree PARTITION BY sipHash64(run) % 16 ORDER BY (run, import, main_pid);

CREATE TABLE IF NOT EXISTS hashloc_stored (
  run String,
  import Int64,
  main_pid Int64,
  location Int64,
  source_line String
) ENGINE = MergeTree PARTITION BY sipHash64(run) % 16 ORDER BY (run, import, main_pid);

CREATE TABLE IF NOT EXISTS malid_stored (
  run String,
  import Int64,
  main_pid Int64,
  malid Int64,
  location Int64,
  reserve_type String,
  category String,
  description String,
  reference String,
  default_size Int64,
  start_time String,
  end_time String,
  start_record Int64,
  end_record Int64
) ENGINE = MergeTree PARTITION BY sipHash64(run) % 16 ORDER BY (run, import, main_pid);

CREATE TABLE IF NOT EXISTS color_stored (
  run String,
  import Int64,
  main_pid Int64,
  malid Int64,
  color Int64,
  color_name String
) ENGINE = MergeTree PARTITION BY sipHash64(run) % 16 ORDER BY (run, import, main_pid);

CREATE TABLE IF NOT EXISTS queries_stored (
  run String,
  import Int64,
  main_pid Int64,
  pid Int64,
  qid Int64,
  linked_qid Int64,
  start_time String,
  first_use_time String,
  last_use_time String,
  query_text String
) ENGINE = MergeTree PARTITION BY sipHash64(run) % 16 ORDER BY (run, import, main_pid);

CREATE TABLE IF NOT EXISTS runs_stored (
  run String,
  import Int64,
  main_pid Int64,
  start_time String,
  end_time String,
  program String,
  environment String,
  account String,
  host String,
  user_name String,
  description String,
  m_entry_size Int64,
  mem_block_size Int64,
  m_group_size Int64
) ENGINE = MergeTree PARTITION BY sipHash64(run) % 16 ORDER BY (run, import, main_pid);

CREATE TABLE IF NOT EXISTS objects_stored (
  run String,
  import Int64,
  main_pid Int64,
  object Int64,
  object_name String
) ENGINE = MergeTree PARTITION BY sipHash64(run) % 16 ORDER BY (run, import, main_pid);

CREATE TABLE IF NOT EXISTS functions_stored (
  run String,
  import Int64,
  main_pid Int64,
  object_name String,
  object Int64,
  function_number Int64,
  function_name String
) ENGINE = MergeTree PARTITION BY sipHash64(run) % 16 ORDER BY (run, import, main_pid);

-- The loads that count.
CREATE VIEW IF NOT EXISTS newest_import AS
SELECT run, newest AS import FROM (
  SELECT run, max(import) AS newest, argMax(deleted, import) AS gone FROM import_stored GROUP BY run
)
WHERE gone = 0;

CREATE VIEW IF NOT EXISTS trace_loss AS
SELECT run, import, trace, place, texts[1] AS what, numbers[1] AS count, texts[2] AS first
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'trace_loss';

CREATE VIEW IF NOT EXISTS trace_note AS
SELECT run, import, trace, place, texts[1] AS note
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'trace_note';

CREATE VIEW IF NOT EXISTS id_name AS
SELECT run, import, trace, place, numbers[1] AS number, texts[1] AS name, texts[2] AS reserve_type
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'id_name';

CREATE VIEW IF NOT EXISTS color_name AS
SELECT run, import, trace, place, numbers[1] AS id, numbers[2] AS number, texts[1] AS name
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'color_name';

CREATE VIEW IF NOT EXISTS line_name AS
SELECT run, import, trace, place, texts[1] AS name
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'line_name';

CREATE VIEW IF NOT EXISTS function_name AS
SELECT run, import, trace, place, texts[1] AS object, texts[2] AS name
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'function_name';

CREATE VIEW IF NOT EXISTS call_path AS
SELECT run, import, trace, place, numbers[1] AS parent, numbers[2] AS function
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'call_path';

CREATE VIEW IF NOT EXISTS process_name AS
SELECT run, import, trace, place, numbers[1] AS pid, texts[1] AS name
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'process_name';

CREATE VIEW IF NOT EXISTS query_text AS
SELECT run, import, trace, place, texts[1] AS text
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'query_text';

CREATE VIEW IF NOT EXISTS histogram AS
SELECT run, import, trace, place, numbers[1] AS kind, numbers[2] AS no_free, numbers[3] AS id, numbers[4] AS exponent, numbers[5] AS blocks, numbers[6] AS bytes
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'histogram';

CREATE VIEW IF NOT EXISTS heap_change AS
SELECT run, import, trace, place, numbers[1] AS gap, numbers[2] AS path, numbers[3] AS process, numbers[4] AS count, numbers[5] AS bytes
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'heap_change';

CREATE VIEW IF NOT EXISTS timeline_step AS
SELECT run, import, trace, place, numbers[1] AS last_record, texts[1] AS time, numbers[2] AS highest_bytes, numbers[3] AS last_bytes, numbers[4] AS heap_bytes
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'timeline_step';

CREATE VIEW IF NOT EXISTS timeline_level AS
SELECT run, import, trace, numbers[1] AS step, numbers[2] AS place, numbers[3] AS id, numbers[4] AS bytes
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'timeline_level';

CREATE VIEW IF NOT EXISTS program_mark AS
SELECT run, import, trace, place, numbers[1] AS record, texts[1] AS time, texts[2] AS text, numbers[2] AS live_bytes, numbers[3] AS live_blocks
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'program_mark';

CREATE VIEW IF NOT EXISTS mark_level AS
SELECT run, import, trace, numbers[1] AS mark, numbers[2] AS place, numbers[3] AS id, numbers[4] AS bytes
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'mark_level';

CREATE VIEW IF NOT EXISTS memory AS
SELECT run AS run_id, main_pid, time, type, rec, rec_thousands, pid, arc, flow, depth, caller_object, caller_function, callee_object, callee_function, hosk_call, hosk_symbol, hosk_args, query_seq, location, malid, color, addr, size_change, tot_size_change, size, tot_size, addr2, linked_rec, 'color' AS color_label, color_live_size, color_live_tot_size, color_live_count, color_peak_size, color_peak_tot_size, color_mem_size, color_mem_tot_size, color_rec, color_rec_tens, 'malid' AS malid_label, malid_live_size, malid_live_tot_size, malid_live_count, malid_peak_size, malid_peak_tot_size, malid_mem_size, malid_mem_tot_size, malid_rec, malid_rec_hundreds, malid_sum_size, malid_sum_tot_size, malid_sum_count, 'process' AS process_label, process_live_size, process_live_tot_size, process_live_count, process_peak_size, process_peak_tot_size, process_mem_size, process_mem_tot_size, process_rec, process_rec_hundreds, process_sum_size, process_sum_tot_size, process_sum_count, 'process m' AS process_malid_label, process_malid_live_size, process_malid_live_tot_size, process_malid_live_count, process_malid_mem_size, process_malid_mem_tot_size, process_malid_rec, process_malid_rec_hundreds, 'process c' AS process_color_label, process_color_live_size, process_color_live_tot_size, process_color_live_count, process_color_mem_size, process_color_mem_tot_size, process_color_rec, process_color_rec_tens, 'global' AS global_label, global_live_size, global_live_tot_size, global_live_count, global_peak_size, global_peak_tot_size, global_nf_size, global_nf_tot_size, global_nf_count, 'sbrk' AS sbrk_label, sbrk_total, sbrk_count, gap_total, gap_count
FROM memory_stored
WHERE import IN (SELECT import FROM newest_import);

CREATE VIEW IF NOT EXISTS sbrk AS
SELECT run AS run_id, main_pid, time, record, type, sbrk_row, record_again, pid, arc, flow, depth, caller_object, caller_function, callee_object, callee_function, hosk_call, hosk_symbol, hosk_args, query_seq, addr_or_l_sbrk, size_or_c_sbrk, sbrk_total, sbrk_count, gap_total, gap_count
FROM sbrk_stored
WHERE import IN (SELECT import FROM newest_import);

CREATE VIEW IF NOT EXISTS queryevents AS
SELECT run AS run_id, main_pid, seq, time, qid, linked_qid, type, start_sbrk_rows, end_sbrk_rows, start_rec, end_rec, pid, arc, flow, depth, caller_object, caller_function, callee_object, callee_function, hosk_call, hosk_symbol, hosk_args, query_seq
FROM queryevents_stored
WHERE import IN (SELECT import FROM newest_import);

CREATE VIEW IF NOT EXISTS marker AS
SELECT run AS run_id, main_pid, marker, rec, last_rec, time, type, subtype, marker_text
FROM marker_stored
WHERE import IN (SELECT import FROM newest_import);

CREATE VIEW IF NOT EXISTS freemem AS
SELECT run AS run_id, main_pid, alloc_rec, free_rec, type
FROM freemem_stored
WHERE import IN (SELECT import FROM newest_import);

CREATE VIEW IF NOT EXISTS arena AS
SELECT run AS run_id, main_pid, time, record, arena_row, pid, arc, flow, depth, caller_object, caller_function, callee_object, callee_function, hosk_call, hosk_symbol, hosk_args, query_seq, arena, used, freed
FROM arena_stored
WHERE import IN (SELECT import FROM newest_import);

CREATE VIEW IF NOT EXISTS arcs AS
SELECT run AS run_id, main_pid, pid, arc, caller_object_name, caller_object, caller_function, caller_function_name, callee_object_name, callee_object, callee_function, callee_function_name
FROM arcs_stored
WHERE import IN (SELECT import FROM newest_import);

CREATE VIEW IF NOT EXISTS symbols AS
SELECT run AS run_id, main_pid, pid, flow, ordinal, sym, size, category, flags, declaration
FROM symbols_stored
WHERE import IN (SELECT import FROM newest_import);

CREATE VIEW IF NOT EXISTS flowdata AS
SELECT run AS run_id, main_pid, pid, flow, ordinal, group_size, group_count, symbol_lines
FROM flowdata_stored
WHERE import IN (SELECT import FROM newest_import);

CREATE VIEW IF NOT EXISTS flow AS
SELECT run AS run_id, main_pid, pid, flow, depth, record, arc, direction
FROM flow_stored
WHERE import IN (SELECT import FROM newest_import);

CREATE VIEW IF NOT EXISTS process AS
SELECT run AS run_id, main_pid, pid, session_name, malid, xmlid, parent, start_time, end_time, start_record, end_record
FROM process_stored
WHERE import IN (SELECT import FROM newest_import);

CREATE VIEW IF NOT EXISTS hashloc AS
SELECT run AS run_id, main_pid, location, source_line
FROM hashloc_stored
WHERE import IN (SELECT import FROM newest_import);

CREATE VIEW IF NOT EXISTS malid AS
SELECT run AS run_id, main_pid, malid, location, reserve_type, category, description, reference, default_size, start_time, end_time, start_record, end_record
FROM malid_stored
WHERE import IN (SELECT import FROM newest_import);

CREATE VIEW IF NOT EXISTS color AS
SELECT run AS run_id, main_pid, malid, color, color_name
FROM color_stored
WHERE import IN (SELECT import FROM newest_import);

CREATE VIEW IF NOT EXISTS queries AS
SELECT run AS run_id, main_pid, pid, qid, linked_qid, start_time, first_use_time, last_use_time, query_text
FROM queries_stored
WHERE import IN (SELECT import FROM newest_import);

CREATE VIEW IF NOT EXISTS runs AS
SELECT run AS run_id, main_pid, start_time, end_time, program, environment, account, host, user_name, description, m_entry_size, mem_block_size, m_group_size
FROM runs_stored
WHERE import IN (SELECT import FROM newest_import);

CREATE VIEW IF NOT EXISTS objects AS
SELECT run AS run_id, main_pid, object, object_name
FROM objects_stored
WHERE import IN (SELECT import FROM newest_import);

CREATE VIEW IF NOT EXISTS functions AS
SELECT run AS run_id, main_pid, object_name, object, function_number, function_name
FROM functions_stored
WHERE import IN (SELECT import FROM newest_import);

-- every block (a, n) and every resize of one (r), with the record that ended it
CREATE VIEW IF NOT EXISTS block AS
SELECT run_id, main_pid, rec, type, malid, color, location, pid, arc, caller_object, caller_function,
  callee_object, callee_function, query_seq, size, tot_size, size_change, end_rec, end_type
FROM (
  SELECT run AS run_id, import, main_pid, rec, type, malid, color, location, pid, arc, caller_object,
    caller_function, callee_object, callee_function, query_seq, size, tot_size, size_change
  FROM memory_stored
  WHERE import IN (SELECT import FROM newest_import) AND (type IN ('a', 'n') OR (type = 'r' AND linked_rec <> 0))
) AS m ALL LEFT JOIN (
  SELECT import, main_pid, alloc_rec AS rec, toNullable(free_rec) AS end_rec, toNullable(type) AS end_type
  FROM freemem_stored
  WHERE import IN (SELECT import FROM newest_import)
) AS f USING (import, main_pid, rec);

-- the blocks that share all of kind, id, colour, line, call path, process and SQL statement
CREATE VIEW IF NOT EXISTS block_group AS
SELECT run, import, trace, place, no_free,
  id_place AS id, color_place AS color, line_place AS line, path_place AS path,
  process_place AS process, query_place AS query, resizes, made_blocks, made_bytes, made_tot_bytes,
  freed_blocks, freed_bytes, freed_tot_bytes, left_blocks, left_bytes, left_tot_bytes, reset_blocks,
  reset_bytes, reset_tot_bytes, released_blocks, released_bytes, released_tot_bytes, live_blocks,
  live_bytes, live_tot_bytes, peak_blocks, peak_bytes, peak_tot_bytes, temporary_blocks,
  temporary_bytes, temporary_tot_bytes
FROM block_group_stored
WHERE import IN (SELECT import FROM newest_import);

-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by colour of an allocation id
CREATE VIEW IF NOT EXISTS by_color AS
SELECT run, pid, id_name, color_name,
sum(made_blocks) AS allocated_blocks,
  sum(made_bytes) AS allocated_bytes,
  sum(made_tot_bytes) AS allocated_tot_bytes,
  sum(freed_blocks) AS freed_blocks,
  sum(freed_bytes) AS freed_bytes,
  sum(freed_tot_bytes) AS freed_tot_bytes,
  sum(leaked_blocks) AS leaked_blocks,
  sum(leaked_bytes) AS leaked_bytes,
  sum(leaked_tot_bytes) AS leaked_tot_bytes,
  sum(reset_blocks) AS reset_blocks,
  sum(reset_bytes) AS reset_bytes,
  sum(reset_tot_bytes) AS reset_tot_bytes,
  sum(released_blocks) AS released_blocks,
  sum(released_bytes) AS released_bytes,
  sum(released_tot_bytes) AS released_tot_bytes,
  sum(live_blocks) AS live_blocks,
  sum(live_bytes) AS live_bytes,
  sum(live_tot_bytes) AS live_tot_bytes,
  sum(peak_blocks) AS peak_blocks,
  sum(peak_bytes) AS peak_bytes,
  sum(peak_tot_bytes) AS peak_tot_bytes,
  sum(temporary_blocks) AS temporary_blocks,
  sum(temporary_bytes) AS temporary_bytes,
  sum(temporary_tot_bytes) AS temporary_tot_bytes,
  sum(resizes) AS resizes
FROM block_group_stored
WHERE import IN (SELECT import FROM newest_import)
GROUP BY run, import, trace, pid, id_place, color_place, id_name, color_name;

-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by innermost function
CREATE VIEW IF NOT EXISTS by_function AS
SELECT run, pid, function_name AS function,
sum(made_blocks) AS allocated_blocks,
  sum(made_bytes) AS allocated_bytes,
  sum(made_tot_bytes) AS allocated_tot_bytes,
  sum(freed_blocks) AS freed_blocks,
  sum(freed_bytes) AS freed_bytes,
  sum(freed_tot_bytes) AS freed_tot_bytes,
  sum(leaked_blocks) AS leaked_blocks,
  sum(leaked_bytes) AS leaked_bytes,
  sum(leaked_tot_bytes) AS leaked_tot_bytes,
  sum(reset_blocks) AS reset_blocks,
  sum(reset_bytes) AS reset_bytes,
  sum(reset_tot_bytes) AS reset_tot_bytes,
  sum(released_blocks) AS released_blocks,
  sum(released_bytes) AS released_bytes,
  sum(released_tot_bytes) AS released_tot_bytes,
  sum(live_blocks) AS live_blocks,
  sum(live_bytes) AS live_bytes,
  sum(live_tot_bytes) AS live_tot_bytes,
  sum(peak_blocks) AS peak_blocks,
  sum(peak_bytes) AS peak_bytes,
  sum(peak_tot_bytes) AS peak_tot_bytes,
  sum(temporary_blocks) AS temporary_blocks,
  sum(temporary_bytes) AS temporary_bytes,
  sum(temporary_tot_bytes) AS temporary_tot_bytes,
  sum(resizes) AS resizes
FROM block_group_stored
WHERE import IN (SELECT import FROM newest_import)
GROUP BY run, import, trace, pid, function_place, function_name;

-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by allocation id
CREATE VIEW IF NOT EXISTS by_id AS
SELECT run, pid, id_name,
sum(made_blocks) AS allocated_blocks,
  sum(made_bytes) AS allocated_bytes,
  sum(made_tot_bytes) AS allocated_tot_bytes,
  sum(freed_blocks) AS freed_blocks,
  sum(freed_bytes) AS freed_bytes,
  sum(freed_tot_bytes) AS freed_tot_bytes,
  sum(leaked_blocks) AS leaked_blocks,
  sum(leaked_bytes) AS leaked_bytes,
  sum(leaked_tot_bytes) AS leaked_tot_bytes,
  sum(reset_blocks) AS reset_blocks,
  sum(reset_bytes) AS reset_bytes,
  sum(reset_tot_bytes) AS reset_tot_bytes,
  sum(released_blocks) AS released_blocks,
  sum(released_bytes) AS released_bytes,
  sum(released_tot_bytes) AS released_tot_bytes,
  sum(live_blocks) AS live_blocks,
  sum(live_bytes) AS live_bytes,
  sum(live_tot_bytes) AS live_tot_bytes,
  sum(peak_blocks) AS peak_blocks,
  sum(peak_bytes) AS peak_bytes,
  sum(peak_tot_bytes) AS peak_tot_bytes,
  sum(temporary_blocks) AS temporary_blocks,
  sum(temporary_bytes) AS temporary_bytes,
  sum(temporary_tot_bytes) AS temporary_tot_bytes,
  sum(resizes) AS resizes
FROM block_group_stored
WHERE import IN (SELECT import FROM newest_import)
GROUP BY run, import, trace, pid, id_place, id_name;

-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by source line
CREATE VIEW IF NOT EXISTS by_line AS
SELECT run, pid, line_name AS source_line,
sum(made_blocks) AS allocated_blocks,
  sum(made_bytes) AS allocated_bytes,
  sum(made_tot_bytes) AS allocated_tot_bytes,
  sum(freed_blocks) AS freed_blocks,
  sum(freed_bytes) AS freed_bytes,
  sum(freed_tot_bytes) AS freed_tot_bytes,
  sum(leaked_blocks) AS leaked_blocks,
  sum(leaked_bytes) AS leaked_bytes,
  sum(leaked_tot_bytes) AS leaked_tot_bytes,
  sum(reset_blocks) AS reset_blocks,
  sum(reset_bytes) AS reset_bytes,
  sum(reset_tot_bytes) AS reset_tot_bytes,
  sum(released_blocks) AS released_blocks,
  sum(released_bytes) AS released_bytes,
  sum(released_tot_bytes) AS released_tot_bytes,
  sum(live_blocks) AS live_blocks,
  sum(live_bytes) AS live_bytes,
  sum(live_tot_bytes) AS live_tot_bytes,
  sum(peak_blocks) AS peak_blocks,
  sum(peak_bytes) AS peak_bytes,
  sum(peak_tot_bytes) AS peak_tot_bytes,
  sum(temporary_blocks) AS temporary_blocks,
  sum(temporary_bytes) AS temporary_bytes,
  sum(temporary_tot_bytes) AS temporary_tot_bytes,
  sum(resizes) AS resizes
FROM block_group_stored
WHERE import IN (SELECT import FROM newest_import)
GROUP BY run, import, trace, pid, line_place, line_name;

-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by call path
CREATE VIEW IF NOT EXISTS by_path AS
SELECT run, pid, numbers[3] AS depth, texts[1] AS path,
numbers[5] AS allocated_blocks,
  numbers[6] AS allocated_bytes,
  numbers[7] AS allocated_tot_bytes,
  numbers[8] AS freed_blocks,
  numbers[9] AS freed_bytes,
  numbers[10] AS freed_tot_bytes,
  numbers[11] AS leaked_blocks,
  numbers[12] AS leaked_bytes,
  numbers[13] AS leaked_tot_bytes,
  numbers[14] AS reset_blocks,
  numbers[15] AS reset_bytes,
  numbers[16] AS reset_tot_bytes,
  numbers[17] AS released_blocks,
  numbers[18] AS released_bytes,
  numbers[19] AS released_tot_bytes,
  numbers[20] AS live_blocks,
  numbers[21] AS live_bytes,
  numbers[22] AS live_tot_bytes,
  numbers[23] AS peak_blocks,
  numbers[24] AS peak_bytes,
  numbers[25] AS peak_tot_bytes,
  numbers[26] AS temporary_blocks,
  numbers[27] AS temporary_bytes,
  numbers[28] AS temporary_tot_bytes,
  numbers[29] AS resizes
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'call_path' AND length(numbers) > 4;

-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by process
CREATE VIEW IF NOT EXISTS by_process AS
SELECT run, pid, process_pid, process_name,
sum(made_blocks) AS allocated_blocks,
  sum(made_bytes) AS allocated_bytes,
  sum(made_tot_bytes) AS allocated_tot_bytes,
  sum(freed_blocks) AS freed_blocks,
  sum(freed_bytes) AS freed_bytes,
  sum(freed_tot_bytes) AS freed_tot_bytes,
  sum(leaked_blocks) AS leaked_blocks,
  sum(leaked_bytes) AS leaked_bytes,
  sum(leaked_tot_bytes) AS leaked_tot_bytes,
  sum(reset_blocks) AS reset_blocks,
  sum(reset_bytes) AS reset_bytes,
  sum(reset_tot_bytes) AS reset_tot_bytes,
  sum(released_blocks) AS released_blocks,
  sum(released_bytes) AS released_bytes,
  sum(released_tot_bytes) AS released_tot_bytes,
  sum(live_blocks) AS live_blocks,
  sum(live_bytes) AS live_bytes,
  sum(live_tot_bytes) AS live_tot_bytes,
  sum(peak_blocks) AS peak_blocks,
  sum(peak_bytes) AS peak_bytes,
  sum(peak_tot_bytes) AS peak_tot_bytes,
  sum(temporary_blocks) AS temporary_blocks,
  sum(temporary_bytes) AS temporary_bytes,
  sum(temporary_tot_bytes) AS temporary_tot_bytes,
  sum(resizes) AS resizes
FROM block_group_stored
WHERE import IN (SELECT import FROM newest_import)
GROUP BY run, import, trace, pid, process_place, process_pid, process_name;

-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by SQL statement
CREATE VIEW IF NOT EXISTS by_query AS
SELECT run, pid, query_text AS query,
sum(made_blocks) AS allocated_blocks,
  sum(made_bytes) AS allocated_bytes,
  sum(made_tot_bytes) AS allocated_tot_bytes,
  sum(freed_blocks) AS freed_blocks,
  sum(freed_bytes) AS freed_bytes,
  sum(freed_tot_bytes) AS freed_tot_bytes,
  sum(leaked_blocks) AS leaked_blocks,
  sum(leaked_bytes) AS leaked_bytes,
  sum(leaked_tot_bytes) AS leaked_tot_bytes,
  sum(reset_blocks) AS reset_blocks,
  sum(reset_bytes) AS reset_bytes,
  sum(reset_tot_bytes) AS reset_tot_bytes,
  sum(released_blocks) AS released_blocks,
  sum(released_bytes) AS released_bytes,
  sum(released_tot_bytes) AS released_tot_bytes,
  sum(live_blocks) AS live_blocks,
  sum(live_bytes) AS live_bytes,
  sum(live_tot_bytes) AS live_tot_bytes,
  sum(peak_blocks) AS peak_blocks,
  sum(peak_bytes) AS peak_bytes,
  sum(peak_tot_bytes) AS peak_tot_bytes,
  sum(temporary_blocks) AS temporary_blocks,
  sum(temporary_bytes) AS temporary_bytes,
  sum(temporary_tot_bytes) AS temporary_tot_bytes,
  sum(resizes) AS resizes
FROM block_group_stored
WHERE import IN (SELECT import FROM newest_import)
GROUP BY run, import, trace, pid, query_place, query_text;

-- bytes of the traces of all runs by colour of an allocation id, with program and host; several rows may have one name
CREATE VIEW IF NOT EXISTS fleet_by_color AS
SELECT run, import AS import_order, program, host, name, allocated_bytes, leaked_bytes, live_bytes,
  peak_bytes, temporary_bytes
FROM name_sum_stored
WHERE import IN (SELECT import FROM newest_import) AND key = 'color';

-- bytes of the traces of all runs by innermost function, with program and host; several rows may have one name
CREATE VIEW IF NOT EXISTS fleet_by_function AS
SELECT run, import AS import_order, program, host, name, allocated_bytes, leaked_bytes, live_bytes,
  peak_bytes, temporary_bytes
FROM name_sum_stored
WHERE import IN (SELECT import FROM newest_import) AND key = 'function';

-- bytes of the traces of all runs by allocation id, with program and host; several rows may have one name
CREATE VIEW IF NOT EXISTS fleet_by_id AS
SELECT run, import AS import_order, program, host, name, allocated_bytes, leaked_bytes, live_bytes,
  peak_bytes, temporary_bytes
FROM name_sum_stored
WHERE import IN (SELECT import FROM newest_import) AND key = 'id';

-- bytes of the traces of all runs by source line, with program and host; several rows may have one name
CREATE VIEW IF NOT EXISTS fleet_by_line AS
SELECT run, import AS import_order, program, host, name, allocated_bytes, leaked_bytes, live_bytes,
  peak_bytes, temporary_bytes
FROM name_sum_stored
WHERE import IN (SELECT import FROM newest_import) AND key = 'line';

-- bytes of the traces of all runs by process, with program and host; several rows may have one name
CREATE VIEW IF NOT EXISTS fleet_by_process AS
SELECT run, import AS import_order, program, host, name, allocated_bytes, leaked_bytes, live_bytes,
  peak_bytes, temporary_bytes
FROM name_sum_stored
WHERE import IN (SELECT import FROM newest_import) AND key = 'process';

-- bytes of the traces of all runs by SQL statement, with program and host; several rows may have one name
CREATE VIEW IF NOT EXISTS fleet_by_query AS
SELECT run, import AS import_order, program, host, name, allocated_bytes, leaked_bytes, live_bytes,
  peak_bytes, temporary_bytes
FROM name_sum_stored
WHERE import IN (SELECT import FROM newest_import) AND key = 'query';

-- the first run in which a name of any kind leaked, and the last one
CREATE VIEW IF NOT EXISTS fleet_first_leaks AS
SELECT key, program, name, argMin(run, import) AS first_run, argMin(leaked, import) AS leaked_bytes,
  toInt64(count()) AS runs, argMax(run, import) AS last_run
FROM (
  SELECT key, import, run, program, name, sum(leaked_bytes) AS leaked
  FROM name_sum_stored WHERE import IN (SELECT import FROM newest_import) AND leaked_bytes != 0
  GROUP BY key, import, run, program, name
)
GROUP BY key, program, name;

-- names of any kind that leaked more in each of the last five runs of a program than in the one before
CREATE VIEW IF NOT EXISTS fleet_growth AS
SELECT key, program, name, runs[1].2 AS first_run, runs[-1].2 AS last_run,
  if(length(steps) = 5, steps[1].2, toInt64(0)) AS first_bytes, steps[-1].2 AS last_bytes
FROM (
  SELECT item.1 AS key, program, item.2 AS name, any(all_runs) AS runs,
    arraySort(groupArray((item.3, item.4))) AS steps
  FROM (
    SELECT program, all_runs, arrayJoin(items) AS item
    FROM (
      SELECT program, arraySort(groupUniqArray((import, run))) AS all_runs,
        groupArray((key, name, import, leaked)) AS items
      FROM (
        SELECT program, key, name, import, run, sum(bytes) AS leaked
        FROM (
          SELECT program, key, name, import, run, leaked_bytes AS bytes
          FROM name_sum_stored WHERE import IN (SELECT import FROM newest_import) AND (program, import) GLOBAL IN (
      SELECT program, arrayJoin(arraySlice(arraySort(groupUniqArray(import)), -5)) AS last_import
      FROM trace_stored WHERE import IN (SELECT import FROM newest_import)
      GROUP BY program HAVING length(groupUniqArray(import)) >= 5
    )
          UNION ALL
          SELECT program, '' AS key, '' AS name, import, run, toInt64(0) AS bytes
          FROM trace_stored WHERE import IN (SELECT import FROM newest_import) AND (program, import) GLOBAL IN (
      SELECT program, arrayJoin(arraySlice(arraySort(groupUniqArray(import)), -5)) AS last_import
      FROM trace_stored WHERE import IN (SELECT import FROM newest_import)
      GROUP BY program HAVING length(groupUniqArray(import)) >= 5
    )
        )
        GROUP BY program, key, name, import, run
      )
      GROUP BY program
    )
  )
  WHERE item.4 != 0
  GROUP BY key, program, name
)
WHERE (length(steps) = 5 OR (length(steps) = 4 AND steps[1].1 != runs[1].1))
  AND arrayAll((a, b) -> b.2 > a.2, arrayPopBack(steps), arrayPopFront(steps));

-- runs with more than twice the median of their program and the label "release"
CREATE VIEW IF NOT EXISTS fleet_outliers AS
SELECT program, release, run, found.1 AS measure, found.2 AS bytes, found.3 AS median_bytes
FROM (
  SELECT program, release, item.1 AS run, arrayJoin([('leaked', item.3, median_leaked),
    ('peak', item.2, median_peak)]) AS found
  FROM (
    SELECT program, release, median_peak, median_leaked, arrayJoin(items) AS item
    FROM (
      SELECT program, release, groupArray((run, peak, leaked)) AS items,
        arraySort(groupArray(peak))[toInt64(intDiv(count() * 50, 100)) + 1] AS median_peak,
        arraySort(groupArray(leaked))[toInt64(intDiv(count() * 50, 100)) + 1] AS median_leaked
      FROM (
        SELECT import, run, program, release, sum(peak_bytes) AS peak,
          sum(total_leaked_bytes) AS leaked
        FROM trace_stored WHERE import IN (SELECT import FROM newest_import) GROUP BY import, run, program, release
      )
      GROUP BY program, release
    )
  )
)
WHERE bytes > 2 * median_bytes;

-- runs, and median and 95th percentile of peak and leaks, by program and the label "release"
CREATE VIEW IF NOT EXISTS fleet_summary AS
SELECT program, release, toInt64(count()) AS runs,
  arraySort(groupArray(peak))[toInt64(intDiv(count() * 50, 100)) + 1] AS median_peak_bytes,
  arraySort(groupArray(peak))[toInt64(intDiv(count() * 95, 100)) + 1] AS p95_peak_bytes,
  arraySort(groupArray(leaked))[toInt64(intDiv(count() * 50, 100)) + 1] AS median_leaked_bytes,
  arraySort(groupArray(leaked))[toInt64(intDiv(count() * 95, 100)) + 1] AS p95_leaked_bytes
FROM (
  SELECT import, run, program, release, sum(peak_bytes) AS peak, sum(total_leaked_bytes) AS leaked
  FROM trace_stored WHERE import IN (SELECT import FROM newest_import) GROUP BY import, run, program, release
)
GROUP BY program, release;

-- program, host, peak and leaks of the traces of all runs
CREATE VIEW IF NOT EXISTS fleet_trace AS
SELECT run, import AS import_order, program, host, pid, complete, records, peak_bytes,
  total_leaked_bytes AS leaked_bytes
FROM trace_stored
WHERE import IN (SELECT import FROM newest_import);

-- growth of the heap and gaps in it, by process and call path
CREATE VIEW IF NOT EXISTS heap_growth AS
SELECT run, pid, if(numbers[1] = 0, 'growth', 'gap') AS kind, numbers[6] AS process_pid,
  texts[1] AS process_name, texts[2] AS path, numbers[4] AS count, numbers[5] AS bytes
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'heap_change';

-- what runs were given at their import, by key and value
CREATE VIEW IF NOT EXISTS labels AS
SELECT run, key, value
FROM import_stored ARRAY JOIN label_keys AS key, label_values AS value
WHERE import IN (SELECT import FROM newest_import);

-- blocks that ended by how many memory records they lived
CREATE VIEW IF NOT EXISTS lifetimes AS
SELECT run, pid, if(numbers[2] = 0, 'with free', 'no free') AS kind, if(numbers[4] < 0, toInt64(0), bitShiftLeft(toInt64(1), toUInt8(greatest(numbers[4], 0)))) AS from_records, if(numbers[4] < 0, toInt64(0), bitShiftLeft(toInt64(2), toUInt8(greatest(numbers[4], 0))) - 1) AS to_records,
  sum(numbers[5]) AS blocks, sum(numbers[6]) AS bytes
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'histogram' AND numbers[1] = 1
GROUP BY run, import, trace, pid, numbers[2], numbers[4];

-- blocks that ended by how many memory records they lived, by allocation id
CREATE VIEW IF NOT EXISTS lifetimes_by_id AS
SELECT run, pid, if(numbers[2] = 0, 'with free', 'no free') AS kind, texts[1] AS id_name, if(numbers[4] < 0, toInt64(0), bitShiftLeft(toInt64(1), toUInt8(greatest(numbers[4], 0)))) AS from_records, if(numbers[4] < 0, toInt64(0), bitShiftLeft(toInt64(2), toUInt8(greatest(numbers[4], 0))) - 1) AS to_records,
  numbers[5] AS blocks, numbers[6] AS bytes
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'histogram' AND numbers[1] = 1;

-- what keeps a trace from being complete
CREATE VIEW IF NOT EXISTS losses AS
SELECT run, pid, texts[1] AS what, numbers[1] AS count, texts[2] AS first
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'trace_loss';

-- live memory at every marker of the program and its change since the one before
CREATE VIEW IF NOT EXISTS marker_change AS
SELECT run, pid, place AS marker, numbers[1] AS record, texts[1] AS time, texts[2] AS marker_text,
  numbers[3] AS live_blocks, numbers[2] AS live_bytes, numbers[4] AS live_change
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'program_mark';

-- live memory of an allocation id at the markers at which it had changed
CREATE VIEW IF NOT EXISTS marker_change_by_id AS
SELECT run, pid, numbers[1] AS marker, numbers[5] AS record, texts[1] AS time, texts[2] AS marker_text,
  texts[3] AS id_name, numbers[4] AS live_bytes, numbers[6] AS live_change
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'mark_level';

-- what was left out of a profile
CREATE VIEW IF NOT EXISTS notes AS
SELECT run, pid, texts[1] AS note
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'trace_note';

-- call paths as text, outermost function first; long ones keep their innermost part
CREATE VIEW IF NOT EXISTS paths AS
SELECT run, pid, numbers[3] AS depth, texts[1] AS path
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'call_path';

-- bytes lost to the allocator's rounding, by allocation id
CREATE VIEW IF NOT EXISTS rounding_by_id AS
SELECT run, pid, id_name, sum(made_blocks) AS allocated_blocks, sum(made_bytes) AS allocated_bytes,
  sum(made_tot_bytes - made_bytes) AS rounding_bytes,
  if(sum(made_bytes) = 0, 0., 100. * sum(made_tot_bytes - made_bytes) / sum(made_bytes)) AS percent
FROM block_group_stored
WHERE import IN (SELECT import FROM newest_import)
GROUP BY run, import, trace, pid, id_place, id_name;

-- the runs in the order of their imports
CREATE VIEW IF NOT EXISTS run_list AS
SELECT run, imported_at, source, traces, complete, from_rows, records,
  allocated_blocks, allocated_bytes, allocated_tot_bytes,
  leaked_blocks, leaked_bytes, leaked_tot_bytes,
  live_blocks, live_bytes, live_tot_bytes,
  peak_blocks, peak_bytes, peak_tot_bytes, row_count
FROM import_stored
WHERE import IN (SELECT import FROM newest_import);

-- who, when and how much, per trace of a run
CREATE VIEW IF NOT EXISTS run_summary AS
SELECT run, pid, program, environment, account, host, user, description, start_time, end_time, complete,
  from_rows, records, heap_bytes, gap_bytes, peak_record, peak_time,
total_allocated_blocks AS allocated_blocks,
  total_allocated_bytes AS allocated_bytes,
  total_allocated_tot_bytes AS allocated_tot_bytes,
  total_freed_blocks AS freed_blocks,
  total_freed_bytes AS freed_bytes,
  total_freed_tot_bytes AS freed_tot_bytes,
  total_leaked_blocks AS leaked_blocks,
  total_leaked_bytes AS leaked_bytes,
  total_leaked_tot_bytes AS leaked_tot_bytes,
  total_reset_blocks AS reset_blocks,
  total_reset_bytes AS reset_bytes,
  total_reset_tot_bytes AS reset_tot_bytes,
  total_released_blocks AS released_blocks,
  total_released_bytes AS released_bytes,
  total_released_tot_bytes AS released_tot_bytes,
  total_live_blocks AS live_blocks,
  total_live_bytes AS live_bytes,
  total_live_tot_bytes AS live_tot_bytes,
  total_peak_blocks AS peak_blocks,
  total_peak_bytes AS peak_bytes,
  total_peak_tot_bytes AS peak_tot_bytes,
  total_temporary_blocks AS temporary_blocks,
  total_temporary_bytes AS temporary_bytes,
  total_temporary_tot_bytes AS temporary_tot_bytes,
  total_resizes AS resizes
FROM trace_stored
WHERE import IN (SELECT import FROM newest_import);

-- blocks by the size that they were made with
CREATE VIEW IF NOT EXISTS sizes AS
SELECT run, pid, if(numbers[2] = 0, 'with free', 'no free') AS kind, if(numbers[4] < 0, toInt64(0), bitShiftLeft(toInt64(1), toUInt8(greatest(numbers[4], 0)))) AS from_size, if(numbers[4] < 0, toInt64(0), bitShiftLeft(toInt64(2), toUInt8(greatest(numbers[4], 0))) - 1) AS to_size,
  sum(numbers[5]) AS blocks, sum(numbers[6]) AS bytes
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'histogram' AND numbers[1] = 0
GROUP BY run, import, trace, pid, numbers[2], numbers[4];

-- blocks by the size that they were made with, by allocation id
CREATE VIEW IF NOT EXISTS sizes_by_id AS
SELECT run, pid, if(numbers[2] = 0, 'with free', 'no free') AS kind, texts[1] AS id_name, if(numbers[4] < 0, toInt64(0), bitShiftLeft(toInt64(1), toUInt8(greatest(numbers[4], 0)))) AS from_size, if(numbers[4] < 0, toInt64(0), bitShiftLeft(toInt64(2), toUInt8(greatest(numbers[4], 0))) - 1) AS to_size,
  numbers[5] AS blocks, numbers[6] AS bytes
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'histogram' AND numbers[1] = 0;

-- live memory over time: highest and last, and the growth of the heap
CREATE VIEW IF NOT EXISTS timeline AS
SELECT run, pid, place AS step, numbers[1] AS last_record, texts[1] AS time, numbers[2] AS highest_bytes,
  numbers[3] AS last_bytes, numbers[4] AS heap_bytes
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'timeline_step';

-- live memory of an allocation id over time, where it changed
CREATE VIEW IF NOT EXISTS timeline_by_id AS
SELECT run, pid, numbers[1] AS step, numbers[5] AS last_record, texts[1] AS time, texts[2] AS id_name,
  numbers[4] AS live_bytes
FROM list_stored
WHERE import IN (SELECT import FROM newest_import) AND list = 'timeline_level';

-- the traces of runs
CREATE VIEW IF NOT EXISTS trace AS
SELECT
  run, import, trace, run_id, pid, program, environment, account, host, user, description,
  start_time, end_time, records, heap_bytes, gap_bytes, from_rows, peak_blocks, peak_bytes,
  peak_tot_bytes, peak_record, peak_time
FROM trace_stored
WHERE import IN (SELECT import FROM newest_import);

-- memory with an obligation to free against memory without
CREATE VIEW IF NOT EXISTS with_free_no_free AS
SELECT run, pid, if(no_free = 0, 'with free', 'no free') AS kind,
sum(made_blocks) AS allocated_blocks,
  sum(made_bytes) AS allocated_bytes,
  sum(made_tot_bytes) AS allocated_tot_bytes,
  sum(freed_blocks) AS freed_blocks,
  sum(freed_bytes) AS freed_bytes,
  sum(freed_tot_bytes) AS freed_tot_bytes,
  sum(leaked_blocks) AS leaked_blocks,
  sum(leaked_bytes) AS leaked_bytes,
  sum(leaked_tot_bytes) AS leaked_tot_bytes,
  sum(reset_blocks) AS reset_blocks,
  sum(reset_bytes) AS reset_bytes,
  sum(reset_tot_bytes) AS reset_tot_bytes,
  sum(released_blocks) AS released_blocks,
  sum(released_bytes) AS released_bytes,
  sum(released_tot_bytes) AS released_tot_bytes,
  sum(live_blocks) AS live_blocks,
  sum(live_bytes) AS live_bytes,
  sum(live_tot_bytes) AS live_tot_bytes,
  sum(peak_blocks) AS peak_blocks,
  sum(peak_bytes) AS peak_bytes,
  sum(peak_tot_bytes) AS peak_tot_bytes,
  sum(temporary_blocks) AS temporary_blocks,
  sum(temporary_bytes) AS temporary_bytes,
  sum(temporary_tot_bytes) AS temporary_tot_bytes,
  sum(resizes) AS resizes
FROM block_group_stored
WHERE import IN (SELECT import FROM newest_import)
GROUP BY run, import, trace, pid, no_free;
