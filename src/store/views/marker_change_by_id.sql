-- live memory of an allocation id at the markers at which it had changed
SELECT {{trace}}, g.mark AS marker, m.record, m.time, m.text AS marker_text, n.name AS id_name,
  g.bytes AS live_bytes,
  g.bytes - LAG(g.bytes, 1, 0) OVER (PARTITION BY g.trace, g.id ORDER BY g.mark) AS live_change
FROM mark_level g {{of_trace}}
JOIN program_mark m ON m.trace = g.trace AND m.place = g.mark
JOIN id_name n ON n.trace = g.trace AND n.place = g.id
