-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by process
SELECT {{trace}}, {{process}},
{{figures}}
FROM block_group g {{of_trace}}
{{of_process}}
GROUP BY g.trace, g.process
