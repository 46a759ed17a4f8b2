-- every block that is live at the end, with the names of its owner
SELECT g.run_id, g.main_pid, g.rec, g.size, g.tot_size, {{id_name}}, {{color_name}},
  {{source_line}}, g.pid, {{process_name}}, {{caller}}, {{callee}}
FROM block g WHERE g.end_rec IS NULL
