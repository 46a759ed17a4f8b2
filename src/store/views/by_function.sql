-- blocks and bytes allocated, freed, leaked, live, at the peak and temporary, by innermost function
SELECT {{trace}}, {{function_text}} AS function,
{{figures}}
FROM block_group g {{of_trace}}
JOIN call_path c ON c.trace = g.trace AND c.place = g.path
JOIN function_name f ON f.trace = g.trace AND f.place = c.function
GROUP BY g.trace, c.function
