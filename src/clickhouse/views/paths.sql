-- call paths as text, outermost function first; long ones keep their innermost part
SELECT run, pid, numbers[3] AS depth, texts[1] AS path
FROM list_stored
WHERE {{stored}} AND list = 'call_path'
ORDER BY numbers[3], import, trace, numbers[4]
