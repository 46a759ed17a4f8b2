-- live memory at every marker of the program and its change since the one before
SELECT {{trace}}, g.place AS marker, g.record, g.time, g.text AS marker_text, g.live_blocks, g.live_bytes,
  g.live_bytes - LAG(g.live_bytes, 1, 0) OVER (PARTITION BY g.trace ORDER BY g.place) AS live_change
FROM program_mark g {{of_trace}}
