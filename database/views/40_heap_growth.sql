-- growth of the heap and its gaps, and who was running
SELECT g.run_id, g.main_pid, g.sbrk_row, g.record, g.time,
  CASE WHEN g.type = 'S' THEN 'growth' ELSE 'gap' END AS kind,
  CASE WHEN g.type = 'S' THEN g.size_or_c_sbrk ELSE g.size_or_c_sbrk - g.addr_or_l_sbrk END
    AS bytes, g.sbrk_total, g.gap_total, g.pid, {{process_name}}, {{caller}}, {{callee}}
FROM sbrk g
