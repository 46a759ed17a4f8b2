-- live memory over time: highest and last, and the growth of the heap
SELECT {{trace}}, g.place AS step, g.last_record, g.time, g.highest_bytes, g.last_bytes, g.heap_bytes
FROM timeline_step g {{of_trace}}
