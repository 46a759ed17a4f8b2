-- what keeps a trace from being complete
SELECT run, pid, texts[1] AS what, numbers[1] AS count, texts[2] AS first
FROM list_stored
WHERE {{stored}} AND list = 'trace_loss'
ORDER BY import, trace, place
