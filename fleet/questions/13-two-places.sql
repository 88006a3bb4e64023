-- Which drives are in two systems at once?
SELECT serial, count(DISTINCT system) AS systems FROM drive
WHERE serial IS NOT NULL AND snapshot IN (SELECT snapshot FROM latest)
GROUP BY serial HAVING count(DISTINCT system) > 1 ORDER BY serial;
