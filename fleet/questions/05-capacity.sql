-- How many drives has each system, and how much do they hold?
SELECT system, count(*) AS drives, sum(capacity_mb) AS mb FROM drive
WHERE snapshot IN (SELECT snapshot FROM latest)
GROUP BY system ORDER BY mb DESC, system;
