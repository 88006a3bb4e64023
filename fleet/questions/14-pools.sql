-- How much has each segment pool, in ranks and segments?
SELECT system, image, pool, count(*) AS ranks, sum(segments) AS segments FROM rank
WHERE snapshot IN (SELECT snapshot FROM latest)
GROUP BY system, image, pool ORDER BY system, image, pool;
