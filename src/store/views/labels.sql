-- what runs were given at their import, by key and value
SELECT r.name AS run, l.key, l.value
FROM run_label l JOIN run r ON r.run = l.run
