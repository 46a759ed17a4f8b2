-- growth of the heap by caller and callee
SELECT run_id, main_pid, pid, process_name, caller, callee, COUNT(*) AS growths,
  SUM(bytes) AS bytes
FROM heap_growth WHERE kind = 'growth'
GROUP BY run_id, main_pid, pid, process_name, caller, callee
