-- Which ten systems changed most this month?
SELECT system, count(*) AS changes FROM change WHERE time >= '2026-11-01'
GROUP BY system ORDER BY changes DESC, system LIMIT 10;
