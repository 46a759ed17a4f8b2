-- The profiles of runs. A run has traces; all else belongs to one trace and is numbered from 0 by
-- `place`. Columns that are named like a table of names hold a place in it. Place 0 of a table of
-- names is the one for "none" or "unknown".

CREATE TABLE run (
  run INTEGER PRIMARY KEY AUTOINCREMENT,  -- ascends in the order of the imports
  name TEXT NOT NULL UNIQUE,
  source TEXT NOT NULL,
  imported_at TEXT NOT NULL,
  complete INTEGER NOT NULL,
  row_count INTEGER                       -- of the CSV tables; NULL when they were not loaded
);

-- What runs were given at their import.
CREATE TABLE run_label (
  run INTEGER NOT NULL REFERENCES run ON DELETE CASCADE,
  key TEXT NOT NULL,
  value TEXT NOT NULL,
  PRIMARY KEY (run, key)
) WITHOUT ROWID;

CREATE TABLE trace (
  trace INTEGER PRIMARY KEY,
  run INTEGER NOT NULL REFERENCES run ON DELETE CASCADE,
  run_id TEXT NOT NULL,                   -- as the trace has it
  pid INTEGER NOT NULL,
  program TEXT NOT NULL,
  environment TEXT NOT NULL,
  account TEXT NOT NULL,
  host TEXT NOT NULL,
  user TEXT NOT NULL,
  description TEXT NOT NULL,
  start_time TEXT NOT NULL,
  end_time TEXT NOT NULL,
  records INTEGER NOT NULL,
  heap_bytes INTEGER NOT NULL,
  gap_bytes INTEGER NOT NULL,
  from_rows INTEGER NOT NULL,
  peak_blocks INTEGER NOT NULL,
  peak_bytes INTEGER NOT NULL,
  peak_tot_bytes INTEGER NOT NULL,
  peak_record INTEGER NOT NULL,
  peak_time TEXT NOT NULL
);
CREATE INDEX trace_by_run ON trace (run);

CREATE TABLE trace_loss (
  trace INTEGER NOT NULL REFERENCES trace ON DELETE CASCADE,
  place INTEGER NOT NULL,
  what TEXT NOT NULL,
  count INTEGER NOT NULL,
  first TEXT NOT NULL,
  PRIMARY KEY (trace, place)
) WITHOUT ROWID;

CREATE TABLE trace_note (
  trace INTEGER NOT NULL REFERENCES trace ON DELETE CASCADE,
  place INTEGER NOT NULL,
  note TEXT NOT NULL,
  PRIMARY KEY (trace, place)
) WITHOUT ROWID;

CREATE TABLE id_name (
  trace INTEGER NOT NULL REFERENCES trace ON DELETE CASCADE,
  place INTEGER NOT NULL,
  number INTEGER NOT NULL,
  name TEXT NOT NULL,
  reserve_type TEXT NOT NULL,
  PRIMARY KEY (trace, place)
) WITHOUT ROWID;

CREATE TABLE color_name (
  trace INTEGER NOT NULL REFERENCES trace ON DELETE CASCADE,
  place INTEGER NOT NULL,
  id INTEGER NOT NULL,
  number INTEGER NOT NULL,
  name TEXT NOT NULL,
  PRIMARY KEY (trace, place)
) WITHOUT ROWID;

CREATE TABLE line_name (
  trace INTEGER NOT NULL REFERENCES trace ON DELETE CASCADE,
  place INTEGER NOT NULL,
  name TEXT NOT NULL,
  PRIMARY KEY (trace, place)
) WITHOUT ROWID;

CREATE TABLE function_name (
  trace INTEGER NOT NULL REFERENCES trace ON DELETE CASCADE,
  place INTEGER NOT NULL,
  object TEXT NOT NULL,
  name TEXT NOT NULL,
  PRIMARY KEY (trace, place)
) WITHOUT ROWID;

-- A function called along the path `parent`; path 0 is the empty one.
CREATE TABLE call_path (
  trace INTEGER NOT NULL REFERENCES trace ON DELETE CASCADE,
  place INTEGER NOT NULL,
  parent INTEGER NOT NULL,
  function INTEGER NOT NULL,
  PRIMARY KEY (trace, place)
) WITHOUT ROWID;
CREATE INDEX call_path_by_parent ON call_path (trace, parent);

CREATE TABLE process_name (
  trace INTEGER NOT NULL REFERENCES trace ON DELETE CASCADE,
  place INTEGER NOT NULL,
  pid INTEGER NOT NULL,
  name TEXT NOT NULL,
  PRIMARY KEY (trace, place)
) WITHOUT ROWID;

CREATE TABLE query_text (
  trace INTEGER NOT NULL REFERENCES trace ON DELETE CASCADE,
  place INTEGER NOT NULL,
  text TEXT NOT NULL,
  PRIMARY KEY (trace, place)
) WITHOUT ROWID;

-- The blocks that share all of kind, id, colour, line, call path, process and SQL statement.
CREATE TABLE block_group (
  trace INTEGER NOT NULL REFERENCES trace ON DELETE CASCADE,
  place INTEGER NOT NULL,
  no_free INTEGER NOT NULL,
  id INTEGER NOT NULL,
  color INTEGER NOT NULL,
  line INTEGER NOT NULL,
  path INTEGER NOT NULL,
  process INTEGER NOT NULL,
  query INTEGER NOT NULL,
  resizes INTEGER NOT NULL,
  made_blocks INTEGER NOT NULL,
  made_bytes INTEGER NOT NULL,
  made_tot_bytes INTEGER NOT NULL,
  freed_blocks INTEGER NOT NULL,
  freed_bytes INTEGER NOT NULL,
  freed_tot_bytes INTEGER NOT NULL,
  left_blocks INTEGER NOT NULL,
  left_bytes INTEGER NOT NULL,
  left_tot_bytes INTEGER NOT NULL,
  reset_blocks INTEGER NOT NULL,
  reset_bytes INTEGER NOT NULL,
  reset_tot_bytes INTEGER NOT NULL,
  released_blocks INTEGER NOT NULL,
  released_bytes INTEGER NOT NULL,
  released_tot_bytes INTEGER NOT NULL,
  live_blocks INTEGER NOT NULL,
  live_bytes INTEGER NOT NULL,
  live_tot_bytes INTEGER NOT NULL,
  peak_blocks INTEGER NOT NULL,
  peak_bytes INTEGER NOT NULL,
  peak_tot_bytes INTEGER NOT NULL,
  temporary_blocks INTEGER NOT NULL,
  temporary_bytes INTEGER NOT NULL,
  temporary_tot_bytes INTEGER NOT NULL,
  PRIMARY KEY (trace, place)
) WITHOUT ROWID;

-- The groups added up by one of their names, the function being the innermost of the path: far fewer
-- rows for questions about many runs. Names of no group have none.

CREATE TABLE sum_by_id (
  trace INTEGER NOT NULL REFERENCES trace ON DELETE CASCADE,
  place INTEGER NOT NULL,
  allocated_bytes INTEGER NOT NULL,
  leaked_bytes INTEGER NOT NULL,
  live_bytes INTEGER NOT NULL,
  peak_bytes INTEGER NOT NULL,
  temporary_bytes INTEGER NOT NULL,
  PRIMARY KEY (trace, place)
) WITHOUT ROWID;

CREATE TABLE sum_by_color (
  trace INTEGER NOT NULL REFERENCES trace ON DELETE CASCADE,
  place INTEGER NOT NULL,
  id INTEGER NOT NULL,
  allocated_bytes INTEGER NOT NULL,
  leaked_bytes INTEGER NOT NULL,
  live_bytes INTEGER NOT NULL,
  peak_bytes INTEGER NOT NULL,
  temporary_bytes INTEGER NOT NULL,
  PRIMARY KEY (trace, place, id)
) WITHOUT ROWID;

CREATE TABLE sum_by_line (
  trace INTEGER NOT NULL REFERENCES trace ON DELETE CASCADE,
  place INTEGER NOT NULL,
  allocated_bytes INTEGER NOT NULL,
  leaked_bytes INTEGER NOT NULL,
  live_bytes INTEGER NOT NULL,
  peak_bytes INTEGER NOT NULL,
  temporary_bytes INTEGER NOT NULL,
  PRIMARY KEY (trace, place)
) WITHOUT ROWID;

CREATE TABLE sum_by_function (
  trace INTEGER NOT NULL REFERENCES trace ON DELETE CASCADE,
  place INTEGER NOT NULL,
  allocated_bytes INTEGER NOT NULL,
  leaked_bytes INTEGER NOT NULL,
  live_bytes INTEGER NOT NULL,
  peak_bytes INTEGER NOT NULL,
  temporary_bytes INTEGER NOT NULL,
  PRIMARY KEY (trace, place)
) WITHOUT ROWID;

CREATE TABLE sum_by_process (
  trace INTEGER NOT NULL REFERENCES trace ON DELETE CASCADE,
  place INTEGER NOT NULL,
  allocated_bytes INTEGER NOT NULL,
  leaked_bytes INTEGER NOT NULL,
  live_bytes INTEGER NOT NULL,
  peak_bytes INTEGER NOT NULL,
  temporary_bytes INTEGER NOT NULL,
  PRIMARY KEY (trace, place)
) WITHOUT ROWID;

CREATE TABLE sum_by_query (
  trace INTEGER NOT NULL REFERENCES trace ON DELETE CASCADE,
  place INTEGER NOT NULL,
  allocated_bytes INTEGER NOT NULL,
  leaked_bytes INTEGER NOT NULL,
  live_bytes INTEGER NOT NULL,
  peak_bytes INTEGER NOT NULL,
  temporary_bytes INTEGER NOT NULL,
  PRIMARY KEY (trace, place)
) WITHOUT ROWID;

-- Blocks by size (kind 0) or by lifetime in memory records (kind 1), from 2^exponent on; exponent
-- -1 stands for 0.
CREATE TABLE histogram (
  trace INTEGER NOT NULL REFERENCES trace ON DELETE CASCADE,
  place INTEGER NOT NULL,
  kind INTEGER NOT NULL,
  no_free INTEGER NOT NULL,
  id INTEGER NOT NULL,
  exponent INTEGER NOT NULL,
  blocks INTEGER NOT NULL,
  bytes INTEGER NOT NULL,
  PRIMARY KEY (trace, place)
) WITHOUT ROWID;

CREATE TABLE heap_change (
  trace INTEGER NOT NULL REFERENCES trace ON DELETE CASCADE,
  place INTEGER NOT NULL,
  gap INTEGER NOT NULL,
  path INTEGER NOT NULL,
  process INTEGER NOT NULL,
  count INTEGER NOT NULL,
  bytes INTEGER NOT NULL,
  PRIMARY KEY (trace, place)
) WITHOUT ROWID;

CREATE TABLE timeline_step (
  trace INTEGER NOT NULL REFERENCES trace ON DELETE CASCADE,
  place INTEGER NOT NULL,
  last_record INTEGER NOT NULL,
  time TEXT NOT NULL,
  highest_bytes INTEGER NOT NULL,
  last_bytes INTEGER NOT NULL,
  heap_bytes INTEGER NOT NULL,
  PRIMARY KEY (trace, place)
) WITHOUT ROWID;

-- Live memory of an id at the end of a step, where it differs from that at the step before.
CREATE TABLE timeline_level (
  trace INTEGER NOT NULL REFERENCES trace ON DELETE CASCADE,
  step INTEGER NOT NULL,
  place INTEGER NOT NULL,
  id INTEGER NOT NULL,
  bytes INTEGER NOT NULL,
  PRIMARY KEY (trace, step, place)
) WITHOUT ROWID;

CREATE TABLE program_mark (
  trace INTEGER NOT NULL REFERENCES trace ON DELETE CASCADE,
  place INTEGER NOT NULL,
  record INTEGER NOT NULL,
  time TEXT NOT NULL,
  text TEXT NOT NULL,
  live_bytes INTEGER NOT NULL,
  live_blocks INTEGER NOT NULL,
  PRIMARY KEY (trace, place)
) WITHOUT ROWID;

-- Live memory of an id at a mark, where it differs from that at the mark before.
CREATE TABLE mark_level (
  trace INTEGER NOT NULL REFERENCES trace ON DELETE CASCADE,
  mark INTEGER NOT NULL,
  place INTEGER NOT NULL,
  id INTEGER NOT NULL,
  bytes INTEGER NOT NULL,
  PRIMARY KEY (trace, mark, place)
) WITHOUT ROWID;

-- The tables that hold rows of runs by `run_id`, the name of the run.
CREATE TABLE row_table (name TEXT PRIMARY KEY) WITHOUT ROWID;
