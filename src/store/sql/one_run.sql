-- A view of one run. The tables of the same names give way to these, so that the view does not add
-- up all runs first.
WITH run AS (SELECT * FROM main.run WHERE name = ?1),
  trace AS (
    SELECT * FROM main.trace WHERE run IN (SELECT run FROM main.run WHERE name = ?1)
  )
SELECT * FROM ({{view}})
