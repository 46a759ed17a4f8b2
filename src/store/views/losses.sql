-- what keeps a trace from being complete
SELECT {{trace}}, g.what, g.count, g.first
FROM trace_loss g {{of_trace}}
