-- allocation ids with a name that means the same in every run
SELECT run_id, main_pid, malid,
  CASE WHEN COALESCE(description, '') = '' THEN reserve_type
    WHEN category IN ('oic', 'dlock') AND COALESCE(reference, '') <> ''
      THEN category || ' ' || description || ':' || reference
    ELSE category || ' ' || description END AS id_name, reserve_type
FROM malid
