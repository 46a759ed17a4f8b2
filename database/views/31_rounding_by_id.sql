-- bytes lost to the allocator's rounding, by allocation id
SELECT run_id, main_pid, id_name, allocated_blocks, allocated_bytes,
  allocated_tot_bytes - allocated_bytes AS rounding_bytes,
  CASE WHEN allocated_bytes = 0 THEN 0
    ELSE CAST(100 * (allocated_tot_bytes - allocated_bytes) / allocated_bytes AS BIGINT)
    END AS rounding_percent
FROM by_id
