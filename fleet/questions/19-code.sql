-- Which levels of the licensed code run on how many partitions?
SELECT firmware, count(*) AS partitions, count(DISTINCT system) AS systems FROM partition
WHERE snapshot IN (SELECT snapshot FROM latest)
GROUP BY firmware ORDER BY firmware;
