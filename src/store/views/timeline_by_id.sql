-- live memory of an allocation id over time, where it changed
SELECT {{trace}}, g.step, s.last_record, s.time, n.name AS id_name, g.bytes AS live_bytes
FROM timeline_level g {{of_trace}}
JOIN timeline_step s ON s.trace = g.trace AND s.place = g.step
JOIN id_name n ON n.trace = g.trace AND n.place = g.id
