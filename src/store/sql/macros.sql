-- Texts that several views share. A line "-- name:" begins a macro.

-- trace:
r.name AS run, t.pid AS pid

-- of_trace:
JOIN trace t ON t.trace = g.trace JOIN run r ON r.run = t.run

-- kind:
CASE g.no_free WHEN 0 THEN 'with free' ELSE 'no free' END AS kind

-- Sums over the rows g of block_group. Leaked is with-free memory that no free ended.

-- figures:
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

-- Of the sums g of a trace by one of its names.

-- fleet_place:
r.name AS run, r.run AS import_order, t.program, t.host

-- fleet_figures:
  g.allocated_bytes, g.leaked_bytes, g.live_bytes, g.peak_bytes, g.temporary_bytes

-- fleet_traces:
SELECT {{fleet_place}}, t.pid,
  CASE WHEN t.from_rows OR EXISTS (SELECT 1 FROM trace_loss l WHERE l.trace = t.trace)
    THEN 0 ELSE 1 END AS complete, t.records, t.peak_bytes,
  COALESCE((SELECT SUM(g.leaked_bytes) FROM sum_by_id g WHERE g.trace = t.trace), 0) AS leaked_bytes
FROM trace t JOIN run r ON r.run = t.run

-- What a program had in each run, by the label "release", and its places in the order of figures.

-- fleet_runs:
one AS (
  SELECT import_order, run, program, SUM(peak_bytes) AS peak, SUM(leaked_bytes) AS leaked
  FROM ({{fleet_traces}}) GROUP BY import_order, run, program
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

-- What leaked in a run, by every kind of name.

-- fleet_leaks:
leaks AS (
  SELECT key, import_order, run, program, name, SUM(leaked_bytes) AS leaked FROM (
    SELECT 'id' AS key, {{fleet_place}}, n.name AS name, g.leaked_bytes
    FROM sum_by_id g {{of_trace}} JOIN id_name n ON n.trace = g.trace AND n.place = g.place
    UNION ALL
    SELECT 'color' AS key, {{fleet_place}}, n.name || ' / ' || c.name AS name, g.leaked_bytes
    FROM sum_by_color g {{of_trace}} JOIN id_name n ON n.trace = g.trace AND n.place = g.id
    JOIN color_name c ON c.trace = g.trace AND c.place = g.place
    UNION ALL
    SELECT 'line' AS key, {{fleet_place}}, n.name AS name, g.leaked_bytes
    FROM sum_by_line g {{of_trace}} JOIN line_name n ON n.trace = g.trace AND n.place = g.place
    UNION ALL
    SELECT 'function' AS key, {{fleet_place}}, {{function_text}} AS name, g.leaked_bytes
    FROM sum_by_function g {{of_trace}}
    JOIN function_name f ON f.trace = g.trace AND f.place = g.place
    UNION ALL
    SELECT 'process' AS key, {{fleet_place}}, n.name AS name, g.leaked_bytes
    FROM sum_by_process g {{of_trace}}
    JOIN process_name n ON n.trace = g.trace AND n.place = g.place
    UNION ALL
    SELECT 'query' AS key, {{fleet_place}}, n.text AS name, g.leaked_bytes
    FROM sum_by_query g {{of_trace}} JOIN query_text n ON n.trace = g.trace AND n.place = g.place
  ) WHERE leaked_bytes <> 0 GROUP BY key, import_order, run, program, name
)

-- process:
p.pid AS process_pid, p.name AS process_name

-- of_process:
JOIN process_name p ON p.trace = g.trace AND p.place = g.process

-- function_text:
CASE f.object WHEN '' THEN f.name ELSE f.object || ':' || f.name END

-- Powers of two: the bar of exponent e holds 2^e and what follows up to 2^(e+1) - 1.

-- from_power:
CASE WHEN g.exponent < 0 THEN 0 ELSE 1 << g.exponent END

-- to_power:
CASE WHEN g.exponent < 0 THEN 0 ELSE (2 << g.exponent) - 1 END

-- totals:
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

-- Joined by CROSS JOIN, so that it is read once and then looked up.

-- path_texts:
p(trace, place, depth, path) AS (
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
