-- what was left out of a profile
SELECT {{trace}}, g.note
FROM trace_note g {{of_trace}}
