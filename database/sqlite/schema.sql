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

-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by colour of an allocation id
CREATE VIEW by_color AS
SELECT r.name AS run, t.pid AS pid, n.name AS id_name, c.name AS color_name,
SUM(g.made_blocks) AS allocated_blocks,
  SUM(g.made_bytes) AS allocated_bytes,
  SUM(g.made_tot_bytes) AS allocated_tot_bytes,
  SUM(g.freed_blocks) AS freed_blocks,
  SUM(g.freed_bytes) AS freed_bytes,
  SUM(g.freed_tot_bytes) AS freed_tot_bytes,
  SUM(CASE g.no_free WHEN 0 THEN g.left_blocks + g.live_blocks ELSE 0 END) AS leaked_blocks,
  SUM(CASE g.no_free WHEN 0 THEN g.left_bytes + g.live_bytes ELSE 0 END) AS leaked_bytes,
  SUM(CASE g.no_free WHEN 0 THEN g.left_tot_bytes + g.live_tot_bytes ELSE 0 END) AS leaked_tot_bytes,
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
FROM block_group g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run
JOIN id_name n ON n.trace = g.trace AND n.place = g.id
JOIN color_name c ON c.trace = g.trace AND c.place = g.color
GROUP BY g.trace, g.id, g.color;

-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by innermost function
CREATE VIEW by_function AS
SELECT r.name AS run, t.pid AS pid, CASE f.object WHEN '' THEN f.name ELSE f.object || ':' || f.name END AS function,
SUM(g.made_blocks) AS allocated_blocks,
  SUM(g.made_bytes) AS allocated_bytes,
  SUM(g.made_tot_bytes) AS allocated_tot_bytes,
  SUM(g.freed_blocks) AS freed_blocks,
  SUM(g.freed_bytes) AS freed_bytes,
  SUM(g.freed_tot_bytes) AS freed_tot_bytes,
  SUM(CASE g.no_free WHEN 0 THEN g.left_blocks + g.live_blocks ELSE 0 END) AS leaked_blocks,
  SUM(CASE g.no_free WHEN 0 THEN g.left_bytes + g.live_bytes ELSE 0 END) AS leaked_bytes,
  SUM(CASE g.no_free WHEN 0 THEN g.left_tot_bytes + g.live_tot_bytes ELSE 0 END) AS leaked_tot_bytes,
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
FROM block_group g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run
JOIN call_path c ON c.trace = g.trace AND c.place = g.path
JOIN function_name f ON f.trace = g.trace AND f.place = c.function
GROUP BY g.trace, c.function;

-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by allocation id
CREATE VIEW by_id AS
SELECT r.name AS run, t.pid AS pid, n.name AS id_name,
SUM(g.made_blocks) AS allocated_blocks,
  SUM(g.made_bytes) AS allocated_bytes,
  SUM(g.made_tot_bytes) AS allocated_tot_bytes,
  SUM(g.freed_blocks) AS freed_blocks,
  SUM(g.freed_bytes) AS freed_bytes,
  SUM(g.freed_tot_bytes) AS freed_tot_bytes,
  SUM(CASE g.no_free WHEN 0 THEN g.left_blocks + g.live_blocks ELSE 0 END) AS leaked_blocks,
  SUM(CASE g.no_free WHEN 0 THEN g.left_bytes + g.live_bytes ELSE 0 END) AS leaked_bytes,
  SUM(CASE g.no_free WHEN 0 THEN g.left_tot_bytes + g.live_tot_bytes ELSE 0 END) AS leaked_tot_bytes,
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
FROM block_group g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run
JOIN id_name n ON n.trace = g.trace AND n.place = g.id
GROUP BY g.trace, g.id;

-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by source line
CREATE VIEW by_line AS
SELECT r.name AS run, t.pid AS pid, n.name AS source_line,
SUM(g.made_blocks) AS allocated_blocks,
  SUM(g.made_bytes) AS allocated_bytes,
  SUM(g.made_tot_bytes) AS allocated_tot_bytes,
  SUM(g.freed_blocks) AS freed_blocks,
  SUM(g.freed_bytes) AS freed_bytes,
  SUM(g.freed_tot_bytes) AS freed_tot_bytes,
  SUM(CASE g.no_free WHEN 0 THEN g.left_blocks + g.live_blocks ELSE 0 END) AS leaked_blocks,
  SUM(CASE g.no_free WHEN 0 THEN g.left_bytes + g.live_bytes ELSE 0 END) AS leaked_bytes,
  SUM(CASE g.no_free WHEN 0 THEN g.left_tot_bytes + g.live_tot_bytes ELSE 0 END) AS leaked_tot_bytes,
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
FROM block_group g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run
JOIN line_name n ON n.trace = g.trace AND n.place = g.line
GROUP BY g.trace, g.line;

-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by call path
CREATE VIEW by_path AS
WITH RECURSIVE p(trace, place, depth, path) AS (
  SELECT c.trace, c.place, 0, '(no function)'
  FROM trace t JOIN call_path c ON c.trace = t.trace AND c.place = 0
  UNION ALL
  SELECT c.trace, c.place, p.depth + 1,
    CASE WHEN p.depth = 0 THEN ''
      WHEN LENGTH(p.path) > 4000 THEN '... > ' || SUBSTR(p.path, -2000) || ' > '
      ELSE p.path || ' > ' END || CASE f.object WHEN '' THEN f.name ELSE f.object || ':' || f.name END
  FROM p JOIN call_path c INDEXED BY call_path_by_parent ON c.trace = p.trace AND c.parent = p.place AND c.parent < c.place
  JOIN function_name f ON f.trace = c.trace AND f.place = c.function
), s AS (
  SELECT g.trace, g.path,
SUM(g.made_blocks) AS allocated_blocks,
  SUM(g.made_bytes) AS allocated_bytes,
  SUM(g.made_tot_bytes) AS allocated_tot_bytes,
  SUM(g.freed_blocks) AS freed_blocks,
  SUM(g.freed_bytes) AS freed_bytes,
  SUM(g.freed_tot_bytes) AS freed_tot_bytes,
  SUM(CASE g.no_free WHEN 0 THEN g.left_blocks + g.live_blocks ELSE 0 END) AS leaked_blocks,
  SUM(CASE g.no_free WHEN 0 THEN g.left_bytes + g.live_bytes ELSE 0 END) AS leaked_bytes,
  SUM(CASE g.no_free WHEN 0 THEN g.left_tot_bytes + g.live_tot_bytes ELSE 0 END) AS leaked_tot_bytes,
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
  FROM block_group g JOIN trace t ON t.trace = g.trace
  GROUP BY g.trace, g.path
)
SELECT r.name AS run, t.pid AS pid, p.depth, p.path,
COALESCE(s.allocated_blocks, 0) AS allocated_blocks,
  COALESCE(s.allocated_bytes, 0) AS allocated_bytes,
  COALESCE(s.allocated_tot_bytes, 0) AS allocated_tot_bytes,
  COALESCE(s.freed_blocks, 0) AS freed_blocks,
  COALESCE(s.freed_bytes, 0) AS freed_bytes,
  COALESCE(s.freed_tot_bytes, 0) AS freed_tot_bytes,
  COALESCE(s.leaked_blocks, 0) AS leaked_blocks,
  COALESCE(s.leaked_bytes, 0) AS leaked_bytes,
  COALESCE(s.leaked_tot_bytes, 0) AS leaked_tot_bytes,
  COALESCE(s.reset_blocks, 0) AS reset_blocks,
  COALESCE(s.reset_bytes, 0) AS reset_bytes,
  COALESCE(s.reset_tot_bytes, 0) AS reset_tot_bytes,
  COALESCE(s.released_blocks, 0) AS released_blocks,
  COALESCE(s.released_bytes, 0) AS released_bytes,
  COALESCE(s.released_tot_bytes, 0) AS released_tot_bytes,
  COALESCE(s.live_blocks, 0) AS live_blocks,
  COALESCE(s.live_bytes, 0) AS live_bytes,
  COALESCE(s.live_tot_bytes, 0) AS live_tot_bytes,
  COALESCE(s.peak_blocks, 0) AS peak_blocks,
  COALESCE(s.peak_bytes, 0) AS peak_bytes,
  COALESCE(s.peak_tot_bytes, 0) AS peak_tot_bytes,
  COALESCE(s.temporary_blocks, 0) AS temporary_blocks,
  COALESCE(s.temporary_bytes, 0) AS temporary_bytes,
  COALESCE(s.temporary_tot_bytes, 0) AS temporary_tot_bytes,
  COALESCE(s.resizes, 0) AS resizes
FROM s JOIN trace t ON t.trace = s.trace JOIN run r ON r.run = t.run
CROSS JOIN p ON p.trace = s.trace AND p.place = s.path;

-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by process
CREATE VIEW by_process AS
SELECT r.name AS run, t.pid AS pid, p.pid AS process_pid, p.name AS process_name,
SUM(g.made_blocks) AS allocated_blocks,
  SUM(g.made_bytes) AS allocated_bytes,
  SUM(g.made_tot_bytes) AS allocated_tot_bytes,
  SUM(g.freed_blocks) AS freed_blocks,
  SUM(g.freed_bytes) AS freed_bytes,
  SUM(g.freed_tot_bytes) AS freed_tot_bytes,
  SUM(CASE g.no_free WHEN 0 THEN g.left_blocks + g.live_blocks ELSE 0 END) AS leaked_blocks,
  SUM(CASE g.no_free WHEN 0 THEN g.left_bytes + g.live_bytes ELSE 0 END) AS leaked_bytes,
  SUM(CASE g.no_free WHEN 0 THEN g.left_tot_bytes + g.live_tot_bytes ELSE 0 END) AS leaked_tot_bytes,
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
FROM block_group g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run
JOIN process_name p ON p.trace = g.trace AND p.place = g.process
GROUP BY g.trace, g.process;

-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by SQL statement
CREATE VIEW by_query AS
SELECT r.name AS run, t.pid AS pid, n.text AS query,
SUM(g.made_blocks) AS allocated_blocks,
  SUM(g.made_bytes) AS allocated_bytes,
  SUM(g.made_tot_bytes) AS allocated_tot_bytes,
  SUM(g.freed_blocks) AS freed_blocks,
  SUM(g.freed_bytes) AS freed_bytes,
  SUM(g.freed_tot_bytes) AS freed_tot_bytes,
  SUM(CASE g.no_free WHEN 0 THEN g.left_blocks + g.live_blocks ELSE 0 END) AS leaked_blocks,
  SUM(CASE g.no_free WHEN 0 THEN g.left_bytes + g.live_bytes ELSE 0 END) AS leaked_bytes,
  SUM(CASE g.no_free WHEN 0 THEN g.left_tot_bytes + g.live_tot_bytes ELSE 0 END) AS leaked_tot_bytes,
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
FROM block_group g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run
JOIN query_text n ON n.trace = g.trace AND n.place = g.query
GROUP BY g.trace, g.query;

-- bytes of the traces of all runs by colour of an allocation id, with program and host; several rows may have one name
CREATE VIEW fleet_by_color AS
SELECT r.name AS run, r.run AS import_order, t.program, t.host, n.name || ' / ' || c.name AS name,
g.allocated_bytes, g.leaked_bytes, g.live_bytes, g.peak_bytes, g.temporary_bytes
FROM sum_by_color g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run
JOIN id_name n ON n.trace = g.trace AND n.place = g.id
JOIN color_name c ON c.trace = g.trace AND c.place = g.place;

-- bytes of the traces of all runs by innermost function, with program and host; several rows may have one name
CREATE VIEW fleet_by_function AS
SELECT r.name AS run, r.run AS import_order, t.program, t.host, CASE f.object WHEN '' THEN f.name ELSE f.object || ':' || f.name END AS name,
g.allocated_bytes, g.leaked_bytes, g.live_bytes, g.peak_bytes, g.temporary_bytes
FROM sum_by_function g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run
JOIN function_name f ON f.trace = g.trace AND f.place = g.place;

-- bytes of the traces of all runs by allocation id, with program and host; several rows may have one name
CREATE VIEW fleet_by_id AS
SELECT r.name AS run, r.run AS import_order, t.program, t.host, n.name AS name,
g.allocated_bytes, g.leaked_bytes, g.live_bytes, g.peak_bytes, g.temporary_bytes
FROM sum_by_id g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run
JOIN id_name n ON n.trace = g.trace AND n.place = g.place;

-- bytes of the traces of all runs by source line, with program and host; several rows may have one name
CREATE VIEW fleet_by_line AS
SELECT r.name AS run, r.run AS import_order, t.program, t.host, n.name AS name,
g.allocated_bytes, g.leaked_bytes, g.live_bytes, g.peak_bytes, g.temporary_bytes
FROM sum_by_line g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run
JOIN line_name n ON n.trace = g.trace AND n.place = g.place;

-- bytes of the traces of all runs by process, with program and host; several rows may have one name
CREATE VIEW fleet_by_process AS
SELECT r.name AS run, r.run AS import_order, t.program, t.host, n.name AS name,
g.allocated_bytes, g.leaked_bytes, g.live_bytes, g.peak_bytes, g.temporary_bytes
FROM sum_by_process g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run
JOIN process_name n ON n.trace = g.trace AND n.place = g.place;

-- bytes of the traces of all runs by SQL statement, with program and host; several rows may have one name
CREATE VIEW fleet_by_query AS
SELECT r.name AS run, r.run AS import_order, t.program, t.host, n.text AS name,
g.allocated_bytes, g.leaked_bytes, g.live_bytes, g.peak_bytes, g.temporary_bytes
FROM sum_by_query g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run
JOIN query_text n ON n.trace = g.trace AND n.place = g.place;

-- the first run in which a name of any kind leaked, and the last one
CREATE VIEW fleet_first_leaks AS
WITH leaks AS (
  SELECT key, import_order, run, program, name, SUM(leaked_bytes) AS leaked FROM (
    SELECT 'id' AS key, r.name AS run, r.run AS import_order, t.program, t.host, n.name AS name, g.leaked_bytes
    FROM sum_by_id g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run JOIN id_name n ON n.trace = g.trace AND n.place = g.place
    UNION ALL
    SELECT 'color' AS key, r.name AS run, r.run AS import_order, t.program, t.host, n.name || ' / ' || c.name AS name, g.leaked_bytes
    FROM sum_by_color g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run JOIN id_name n ON n.trace = g.trace AND n.place = g.id
    JOIN color_name c ON c.trace = g.trace AND c.place = g.place
    UNION ALL
    SELECT 'line' AS key, r.name AS run, r.run AS import_order, t.program, t.host, n.name AS name, g.leaked_bytes
    FROM sum_by_line g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run JOIN line_name n ON n.trace = g.trace AND n.place = g.place
    UNION ALL
    SELECT 'function' AS key, r.name AS run, r.run AS import_order, t.program, t.host, CASE f.object WHEN '' THEN f.name ELSE f.object || ':' || f.name END AS name, g.leaked_bytes
    FROM sum_by_function g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run
    JOIN function_name f ON f.trace = g.trace AND f.place = g.place
    UNION ALL
    SELECT 'process' AS key, r.name AS run, r.run AS import_order, t.program, t.host, n.name AS name, g.leaked_bytes
    FROM sum_by_process g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run
    JOIN process_name n ON n.trace = g.trace AND n.place = g.place
    UNION ALL
    SELECT 'query' AS key, r.name AS run, r.run AS import_order, t.program, t.host, n.text AS name, g.leaked_bytes
    FROM sum_by_query g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run JOIN query_text n ON n.trace = g.trace AND n.place = g.place
  ) WHERE leaked_bytes <> 0 GROUP BY key, import_order, run, program, name
), placed AS (
  SELECT key, program, name, run, leaked,
    ROW_NUMBER() OVER (PARTITION BY key, program, name ORDER BY import_order) AS nth,
    COUNT(*) OVER (PARTITION BY key, program, name) AS runs
  FROM leaks
)
SELECT key, program, name, MAX(CASE WHEN nth = 1 THEN run END) AS first_run,
  MAX(CASE WHEN nth = 1 THEN leaked END) AS leaked_bytes, runs,
  MAX(CASE WHEN nth = runs THEN run END) AS last_run
FROM placed GROUP BY key, program, name, runs
ORDER BY 1, 2, 3;

-- names of any kind that leaked more in each of the last five runs of a program than in the one before
CREATE VIEW fleet_growth AS
WITH leaks AS (
  SELECT key, import_order, run, program, name, SUM(leaked_bytes) AS leaked FROM (
    SELECT 'id' AS key, r.name AS run, r.run AS import_order, t.program, t.host, n.name AS name, g.leaked_bytes
    FROM sum_by_id g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run JOIN id_name n ON n.trace = g.trace AND n.place = g.place
    UNION ALL
    SELECT 'color' AS key, r.name AS run, r.run AS import_order, t.program, t.host, n.name || ' / ' || c.name AS name, g.leaked_bytes
    FROM sum_by_color g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run JOIN id_name n ON n.trace = g.trace AND n.place = g.id
    JOIN color_name c ON c.trace = g.trace AND c.place = g.place
    UNION ALL
    SELECT 'line' AS key, r.name AS run, r.run AS import_order, t.program, t.host, n.name AS name, g.leaked_bytes
    FROM sum_by_line g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run JOIN line_name n ON n.trace = g.trace AND n.place = g.place
    UNION ALL
    SELECT 'function' AS key, r.name AS run, r.run AS import_order, t.program, t.host, CASE f.object WHEN '' THEN f.name ELSE f.object || ':' || f.name END AS name, g.leaked_bytes
    FROM sum_by_function g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run
    JOIN function_name f ON f.trace = g.trace AND f.place = g.place
    UNION ALL
    SELECT 'process' AS key, r.name AS run, r.run AS import_order, t.program, t.host, n.name AS name, g.leaked_bytes
    FROM sum_by_process g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run
    JOIN process_name n ON n.trace = g.trace AND n.place = g.place
    UNION ALL
    SELECT 'query' AS key, r.name AS run, r.run AS import_order, t.program, t.host, n.text AS name, g.leaked_bytes
    FROM sum_by_query g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run JOIN query_text n ON n.trace = g.trace AND n.place = g.place
  ) WHERE leaked_bytes <> 0 GROUP BY key, import_order, run, program, name
), counted AS (
  SELECT program, import_order, run,
    ROW_NUMBER() OVER (PARTITION BY program ORDER BY import_order DESC) AS back,
    COUNT(*) OVER (PARTITION BY program) AS runs
  FROM (SELECT DISTINCT program, import_order, run FROM (SELECT r.name AS run, r.run AS import_order, t.program, t.host, t.pid,
  CASE WHEN t.from_rows OR EXISTS (SELECT 1 FROM trace_loss l WHERE l.trace = t.trace)
    THEN 0 ELSE 1 END AS complete, t.records, t.peak_bytes,
  COALESCE((SELECT SUM(g.leaked_bytes) FROM sum_by_id g WHERE g.trace = t.trace), 0) AS leaked_bytes
FROM trace t JOIN run r ON r.run = t.run))
), last AS (  -- nth of them, from 1 to 5
  SELECT program, import_order, run, 6 - back AS nth FROM counted WHERE back <= 5 AND runs >= 5
), steps AS (
  SELECT s.key, s.program, s.name, l.nth, s.leaked,
    LAG(s.leaked, 1, 0) OVER (PARTITION BY s.key, s.program, s.name ORDER BY l.nth) AS before
  FROM leaks s JOIN last l ON l.program = s.program AND l.import_order = s.import_order
), grown AS (  -- where a name is not in a run, it leaked nothing there: so only the first may lack it
  SELECT key, program, name, MAX(CASE WHEN nth = 1 THEN leaked ELSE 0 END) AS first_bytes,
    MAX(CASE WHEN nth = 5 THEN leaked ELSE 0 END) AS last_bytes
  FROM steps GROUP BY key, program, name
  HAVING (COUNT(*) = 5 OR (COUNT(*) = 4 AND MIN(nth) = 2)) AND MIN(leaked > before) = 1
)
SELECT g.key, g.program, g.name, a.run AS first_run, b.run AS last_run, g.first_bytes, g.last_bytes
FROM grown g JOIN last a ON a.program = g.program AND a.nth = 1
JOIN last b ON b.program = g.program AND b.nth = 5
ORDER BY 1, 2, 3;

-- runs with more than twice the median of their program and the label "release"
CREATE VIEW fleet_outliers AS
WITH one AS (
  SELECT import_order, run, program, SUM(peak_bytes) AS peak, SUM(leaked_bytes) AS leaked
  FROM (SELECT r.name AS run, r.run AS import_order, t.program, t.host, t.pid,
  CASE WHEN t.from_rows OR EXISTS (SELECT 1 FROM trace_loss l WHERE l.trace = t.trace)
    THEN 0 ELSE 1 END AS complete, t.records, t.peak_bytes,
  COALESCE((SELECT SUM(g.leaked_bytes) FROM sum_by_id g WHERE g.trace = t.trace), 0) AS leaked_bytes
FROM trace t JOIN run r ON r.run = t.run) GROUP BY import_order, run, program
), named AS (
  SELECT o.run, o.program, COALESCE(l.value, '') AS release, o.peak, o.leaked
  FROM one o LEFT JOIN run_label l ON l.run = o.import_order AND l.key = 'release'
), placed AS (
  SELECT run, program, release, peak, leaked,
    COUNT(*) OVER (PARTITION BY program, release) AS runs,
    ROW_NUMBER() OVER (PARTITION BY program, release ORDER BY peak) - 1 AS by_peak,
    ROW_NUMBER() OVER (PARTITION BY program, release ORDER BY leaked) - 1 AS by_leaked
  FROM named
), medians AS (
  SELECT program, release, MAX(CASE WHEN by_peak = runs / 2 THEN peak END) AS peak,
    MAX(CASE WHEN by_leaked = runs / 2 THEN leaked END) AS leaked
  FROM placed GROUP BY program, release
)
SELECT p.program, p.release, p.run, 'leaked' AS measure, p.leaked AS bytes,
  m.leaked AS median_bytes
FROM placed p JOIN medians m ON m.program = p.program AND m.release = p.release
WHERE p.leaked > 2 * m.leaked
UNION ALL
SELECT p.program, p.release, p.run, 'peak' AS measure, p.peak AS bytes, m.peak AS median_bytes
FROM placed p JOIN medians m ON m.program = p.program AND m.release = p.release
WHERE p.peak > 2 * m.peak
ORDER BY 1, 2, 3, 4;

-- runs, and median and 95th percentile of peak and leaks, by program and the label "release"
CREATE VIEW fleet_summary AS
WITH one AS (
  SELECT import_order, run, program, SUM(peak_bytes) AS peak, SUM(leaked_bytes) AS leaked
  FROM (SELECT r.name AS run, r.run AS import_order, t.program, t.host, t.pid,
  CASE WHEN t.from_rows OR EXISTS (SELECT 1 FROM trace_loss l WHERE l.trace = t.trace)
    THEN 0 ELSE 1 END AS complete, t.records, t.peak_bytes,
  COALESCE((SELECT SUM(g.leaked_bytes) FROM sum_by_id g WHERE g.trace = t.trace), 0) AS leaked_bytes
FROM trace t JOIN run r ON r.run = t.run) GROUP BY import_order, run, program
), named AS (
  SELECT o.run, o.program, COALESCE(l.value, '') AS release, o.peak, o.leaked
  FROM one o LEFT JOIN run_label l ON l.run = o.import_order AND l.key = 'release'
), placed AS (
  SELECT run, program, release, peak, leaked,
    COUNT(*) OVER (PARTITION BY program, release) AS runs,
    ROW_NUMBER() OVER (PARTITION BY program, release ORDER BY peak) - 1 AS by_peak,
    ROW_NUMBER() OVER (PARTITION BY program, release ORDER BY leaked) - 1 AS by_leaked
  FROM named
)
SELECT program, release, runs,
  MAX(CASE WHEN by_peak = runs / 2 THEN peak END) AS median_peak_bytes,
  MAX(CASE WHEN by_peak = runs * 95 / 100 THEN peak END) AS p95_peak_bytes,
  MAX(CASE WHEN by_leaked = runs / 2 THEN leaked END) AS median_leaked_bytes,
  MAX(CASE WHEN by_leaked = runs * 95 / 100 THEN leaked END) AS p95_leaked_bytes
FROM placed GROUP BY program, release, runs;

-- program, host, peak and leaks of the traces of all runs
CREATE VIEW fleet_trace AS
SELECT r.name AS run, r.run AS import_order, t.program, t.host, t.pid,
  CASE WHEN t.from_rows OR EXISTS (SELECT 1 FROM trace_loss l WHERE l.trace = t.trace)
    THEN 0 ELSE 1 END AS complete, t.records, t.peak_bytes,
  COALESCE((SELECT SUM(g.leaked_bytes) FROM sum_by_id g WHERE g.trace = t.trace), 0) AS leaked_bytes
FROM trace t JOIN run r ON r.run = t.run;

-- growth of the heap and gaps in it, by process and call path
CREATE VIEW heap_growth AS
WITH RECURSIVE p(trace, place, depth, path) AS (
  SELECT c.trace, c.place, 0, '(no function)'
  FROM trace t JOIN call_path c ON c.trace = t.trace AND c.place = 0
  UNION ALL
  SELECT c.trace, c.place, p.depth + 1,
    CASE WHEN p.depth = 0 THEN ''
      WHEN LENGTH(p.path) > 4000 THEN '... > ' || SUBSTR(p.path, -2000) || ' > '
      ELSE p.path || ' > ' END || CASE f.object WHEN '' THEN f.name ELSE f.object || ':' || f.name END
  FROM p JOIN call_path c INDEXED BY call_path_by_parent ON c.trace = p.trace AND c.parent = p.place AND c.parent < c.place
  JOIN function_name f ON f.trace = c.trace AND f.place = c.function
)
SELECT r.name AS run, t.pid AS pid, CASE g.gap WHEN 0 THEN 'growth' ELSE 'gap' END AS kind, n.pid AS process_pid,
  n.name AS process_name, p.path, g.count, g.bytes
FROM heap_change g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run
JOIN process_name n ON n.trace = g.trace AND n.place = g.process
CROSS JOIN p ON p.trace = g.trace AND p.place = g.path;

-- what runs were given at their import, by key and value
CREATE VIEW labels AS
SELECT r.name AS run, l.key, l.value
FROM run_label l JOIN run r ON r.run = l.run;

-- blocks that ended by how many memory records they lived
CREATE VIEW lifetimes AS
SELECT r.name AS run, t.pid AS pid, CASE g.no_free WHEN 0 THEN 'with free' ELSE 'no free' END AS kind, CASE WHEN g.exponent < 0 THEN 0 ELSE 1 << g.exponent END AS from_records, CASE WHEN g.exponent < 0 THEN 0 ELSE (2 << g.exponent) - 1 END AS to_records,
  SUM(g.blocks) AS blocks, SUM(g.bytes) AS bytes
FROM histogram g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run
WHERE g.kind = 1
GROUP BY g.trace, g.no_free, g.exponent;

-- blocks that ended by how many memory records they lived, by allocation id
CREATE VIEW lifetimes_by_id AS
SELECT r.name AS run, t.pid AS pid, CASE g.no_free WHEN 0 THEN 'with free' ELSE 'no free' END AS kind, n.name AS id_name, CASE WHEN g.exponent < 0 THEN 0 ELSE 1 << g.exponent END AS from_records, CASE WHEN g.exponent < 0 THEN 0 ELSE (2 << g.exponent) - 1 END AS to_records,
  g.blocks, g.bytes
FROM histogram g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run
JOIN id_name n ON n.trace = g.trace AND n.place = g.id
WHERE g.kind = 1;

-- what keeps a trace from being complete
CREATE VIEW losses AS
SELECT r.name AS run, t.pid AS pid, g.what, g.count, g.first
FROM trace_loss g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run;

-- live memory at every marker of the program and its change since the one before
CREATE VIEW marker_change AS
SELECT r.name AS run, t.pid AS pid, g.place AS marker, g.record, g.time, g.text AS marker_text, g.live_blocks, g.live_bytes,
  g.live_bytes - LAG(g.live_bytes, 1, 0) OVER (PARTITION BY g.trace ORDER BY g.place) AS live_change
FROM program_mark g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run;

-- live memory of an allocation id at the markers at which it had changed
CREATE VIEW marker_change_by_id AS
SELECT r.name AS run, t.pid AS pid, g.mark AS marker, m.record, m.time, m.text AS marker_text, n.name AS id_name,
  g.bytes AS live_bytes,
  g.bytes - LAG(g.bytes, 1, 0) OVER (PARTITION BY g.trace, g.id ORDER BY g.mark) AS live_change
FROM mark_level g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run
JOIN program_mark m ON m.trace = g.trace AND m.place = g.mark
JOIN id_name n ON n.trace = g.trace AND n.place = g.id;

-- what was left out of a profile
CREATE VIEW notes AS
SELECT r.name AS run, t.pid AS pid, g.note
FROM trace_note g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run;

-- call paths as text, outermost function first; long ones keep their innermost part
CREATE VIEW paths AS
WITH RECURSIVE p(trace, place, depth, path) AS (
  SELECT c.trace, c.place, 0, '(no function)'
  FROM trace t JOIN call_path c ON c.trace = t.trace AND c.place = 0
  UNION ALL
  SELECT c.trace, c.place, p.depth + 1,
    CASE WHEN p.depth = 0 THEN ''
      WHEN LENGTH(p.path) > 4000 THEN '... > ' || SUBSTR(p.path, -2000) || ' > '
      ELSE p.path || ' > ' END || CASE f.object WHEN '' THEN f.name ELSE f.object || ':' || f.name END
  FROM p JOIN call_path c INDEXED BY call_path_by_parent ON c.trace = p.trace AND c.parent = p.place AND c.parent < c.place
  JOIN function_name f ON f.trace = c.trace AND f.place = c.function
)
SELECT r.name AS run, t.pid AS pid, g.depth, g.path
FROM p g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run;

-- bytes lost to the allocator's rounding, by allocation id
CREATE VIEW rounding_by_id AS
SELECT r.name AS run, t.pid AS pid, n.name AS id_name, SUM(g.made_blocks) AS allocated_blocks,
  SUM(g.made_bytes) AS allocated_bytes,
  SUM(g.made_tot_bytes - g.made_bytes) AS rounding_bytes,
  CASE SUM(g.made_bytes) WHEN 0 THEN 0
    ELSE 100.0 * SUM(g.made_tot_bytes - g.made_bytes) / SUM(g.made_bytes) END AS percent
FROM block_group g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run
JOIN id_name n ON n.trace = g.trace AND n.place = g.id
GROUP BY g.trace, g.id;

-- the runs in the order of their imports
CREATE VIEW run_list AS
WITH s AS (
  SELECT g.trace,
SUM(g.made_blocks) AS allocated_blocks,
  SUM(g.made_bytes) AS allocated_bytes,
  SUM(g.made_tot_bytes) AS allocated_tot_bytes,
  SUM(g.freed_blocks) AS freed_blocks,
  SUM(g.freed_bytes) AS freed_bytes,
  SUM(g.freed_tot_bytes) AS freed_tot_bytes,
  SUM(CASE g.no_free WHEN 0 THEN g.left_blocks + g.live_blocks ELSE 0 END) AS leaked_blocks,
  SUM(CASE g.no_free WHEN 0 THEN g.left_bytes + g.live_bytes ELSE 0 END) AS leaked_bytes,
  SUM(CASE g.no_free WHEN 0 THEN g.left_tot_bytes + g.live_tot_bytes ELSE 0 END) AS leaked_tot_bytes,
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
GROUP BY r.run ORDER BY r.run;

-- who, when and how much, per trace of a run
CREATE VIEW run_summary AS
WITH s AS (
  SELECT g.trace,
SUM(g.made_blocks) AS allocated_blocks,
  SUM(g.made_bytes) AS allocated_bytes,
  SUM(g.made_tot_bytes) AS allocated_tot_bytes,
  SUM(g.freed_blocks) AS freed_blocks,
  SUM(g.freed_bytes) AS freed_bytes,
  SUM(g.freed_tot_bytes) AS freed_tot_bytes,
  SUM(CASE g.no_free WHEN 0 THEN g.left_blocks + g.live_blocks ELSE 0 END) AS leaked_blocks,
  SUM(CASE g.no_free WHEN 0 THEN g.left_bytes + g.live_bytes ELSE 0 END) AS leaked_bytes,
  SUM(CASE g.no_free WHEN 0 THEN g.left_tot_bytes + g.live_tot_bytes ELSE 0 END) AS leaked_tot_bytes,
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
  FROM block_group g JOIN trace t ON t.trace = g.trace GROUP BY g.trace
)
SELECT r.name AS run, t.pid AS pid, t.program, t.environment, t.account, t.host, t.user, t.description, t.start_time,
  t.end_time, CASE WHEN t.from_rows OR EXISTS (SELECT 1 FROM trace_loss l WHERE l.trace = t.trace)
    THEN 0 ELSE 1 END AS complete, t.from_rows, t.records, t.heap_bytes, t.gap_bytes,
  t.peak_record, t.peak_time,
COALESCE(s.allocated_blocks, 0) AS allocated_blocks,
  COALESCE(s.allocated_bytes, 0) AS allocated_bytes,
  COALESCE(s.allocated_tot_bytes, 0) AS allocated_tot_bytes,
  COALESCE(s.freed_blocks, 0) AS freed_blocks,
  COALESCE(s.freed_bytes, 0) AS freed_bytes,
  COALESCE(s.freed_tot_bytes, 0) AS freed_tot_bytes,
  COALESCE(s.leaked_blocks, 0) AS leaked_blocks,
  COALESCE(s.leaked_bytes, 0) AS leaked_bytes,
  COALESCE(s.leaked_tot_bytes, 0) AS leaked_tot_bytes,
  COALESCE(s.reset_blocks, 0) AS reset_blocks,
  COALESCE(s.reset_bytes, 0) AS reset_bytes,
  COALESCE(s.reset_tot_bytes, 0) AS reset_tot_bytes,
  COALESCE(s.released_blocks, 0) AS released_blocks,
  COALESCE(s.released_bytes, 0) AS released_bytes,
  COALESCE(s.released_tot_bytes, 0) AS released_tot_bytes,
  COALESCE(s.live_blocks, 0) AS live_blocks,
  COALESCE(s.live_bytes, 0) AS live_bytes,
  COALESCE(s.live_tot_bytes, 0) AS live_tot_bytes,
  COALESCE(s.peak_blocks, 0) AS peak_blocks,
  COALESCE(s.peak_bytes, 0) AS peak_bytes,
  COALESCE(s.peak_tot_bytes, 0) AS peak_tot_bytes,
  COALESCE(s.temporary_blocks, 0) AS temporary_blocks,
  COALESCE(s.temporary_bytes, 0) AS temporary_bytes,
  COALESCE(s.temporary_tot_bytes, 0) AS temporary_tot_bytes,
  COALESCE(s.resizes, 0) AS resizes
FROM trace t JOIN run r ON r.run = t.run LEFT JOIN s ON s.trace = t.trace;

-- blocks by the size that they were made with
CREATE VIEW sizes AS
SELECT r.name AS run, t.pid AS pid, CASE g.no_free WHEN 0 THEN 'with free' ELSE 'no free' END AS kind, CASE WHEN g.exponent < 0 THEN 0 ELSE 1 << g.exponent END AS from_size, CASE WHEN g.exponent < 0 THEN 0 ELSE (2 << g.exponent) - 1 END AS to_size,
  SUM(g.blocks) AS blocks, SUM(g.bytes) AS bytes
FROM histogram g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run
WHERE g.kind = 0
GROUP BY g.trace, g.no_free, g.exponent;

-- blocks by the size that they were made with, by allocation id
CREATE VIEW sizes_by_id AS
SELECT r.name AS run, t.pid AS pid, CASE g.no_free WHEN 0 THEN 'with free' ELSE 'no free' END AS kind, n.name AS id_name, CASE WHEN g.exponent < 0 THEN 0 ELSE 1 << g.exponent END AS from_size, CASE WHEN g.exponent < 0 THEN 0 ELSE (2 << g.exponent) - 1 END AS to_size,
  g.blocks, g.bytes
FROM histogram g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run
JOIN id_name n ON n.trace = g.trace AND n.place = g.id
WHERE g.kind = 0;

-- live memory over time: highest and last, and the growth of the heap
CREATE VIEW timeline AS
SELECT r.name AS run, t.pid AS pid, g.place AS step, g.last_record, g.time, g.highest_bytes, g.last_bytes, g.heap_bytes
FROM timeline_step g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run;

-- live memory of an allocation id over time, where it changed
CREATE VIEW timeline_by_id AS
SELECT r.name AS run, t.pid AS pid, g.step, s.last_record, s.time, n.name AS id_name, g.bytes AS live_bytes
FROM timeline_level g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run
JOIN timeline_step s ON s.trace = g.trace AND s.place = g.step
JOIN id_name n ON n.trace = g.trace AND n.place = g.id;

-- memory with an obligation to free against memory without
CREATE VIEW with_free_no_free AS
SELECT r.name AS run, t.pid AS pid, CASE g.no_free WHEN 0 THEN 'with free' ELSE 'no free' END AS kind,
SUM(g.made_blocks) AS allocated_blocks,
  SUM(g.made_bytes) AS allocated_bytes,
  SUM(g.made_tot_bytes) AS allocated_tot_bytes,
  SUM(g.freed_blocks) AS freed_blocks,
  SUM(g.freed_bytes) AS freed_bytes,
  SUM(g.freed_tot_bytes) AS freed_tot_bytes,
  SUM(CASE g.no_free WHEN 0 THEN g.left_blocks + g.live_blocks ELSE 0 END) AS leaked_blocks,
  SUM(CASE g.no_free WHEN 0 THEN g.left_bytes + g.live_bytes ELSE 0 END) AS leaked_bytes,
  SUM(CASE g.no_free WHEN 0 THEN g.left_tot_bytes + g.live_tot_bytes ELSE 0 END) AS leaked_tot_bytes,
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
FROM block_group g JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run
GROUP BY g.trace, g.no_free;
