-- memory with an obligation to free against memory without
SELECT {{trace}}, {{kind}},
{{figures}}
FROM block_group g {{of_trace}}
GROUP BY g.trace, g.no_free
