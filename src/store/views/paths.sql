-- call paths as text, outermost function first; long ones keep their innermost part
WITH RECURSIVE {{path_texts}}
SELECT {{trace}}, g.depth, g.path
FROM p g {{of_trace}}
