-- growth of the heap and gaps in it, by process and call path
WITH RECURSIVE {{path_texts}}
SELECT {{trace}}, CASE g.gap WHEN 0 THEN 'growth' ELSE 'gap' END AS kind, n.pid AS process_pid,
  n.name AS process_name, p.path, g.count, g.bytes
FROM heap_change g {{of_trace}}
JOIN process_name n ON n.trace = g.trace AND n.place = g.process
CROSS JOIN p ON p.trace = g.trace AND p.place = g.path
