-- what runs were given at their import, by key and value
SELECT run, key, value
FROM import_stored ARRAY JOIN label_keys AS key, label_values AS value
WHERE {{stored}}
ORDER BY import, key
