-- program, host, peak and leaks of the traces of all runs
{{fleet_traces}}
