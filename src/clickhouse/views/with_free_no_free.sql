-- memory with an obligation to free against memory without
SELECT run, pid, {{kind}},
{{figures}}
FROM block_group_stored
WHERE {{stored}}
GROUP BY run, import, trace, pid, no_free
ORDER BY import, trace, no_free
