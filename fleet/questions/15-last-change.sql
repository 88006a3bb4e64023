-- What changed last, system by system?
SELECT system, kind, change, count(*) AS changes FROM change
WHERE snapshot IN (SELECT snapshot FROM latest)
GROUP BY system, kind, change ORDER BY system, kind, change;
