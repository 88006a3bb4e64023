-- Which systems have not been heard of for a week?
SELECT system, time FROM latest WHERE time < '2026-11-13'
ORDER BY time, system;
