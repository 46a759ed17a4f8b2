-- live memory at every marker of the program and its change since the one before
SELECT run, pid, place AS marker, numbers[1] AS record, texts[1] AS time, texts[2] AS marker_text,
  numbers[3] AS live_blocks, numbers[2] AS live_bytes, numbers[4] AS live_change
FROM list_stored
WHERE {{stored}} AND list = 'program_mark'
ORDER BY import, trace, place
