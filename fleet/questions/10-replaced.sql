-- How many drives were replaced this month, system by system?
SELECT system, count(*) AS replaced FROM change
WHERE kind = 'drive' AND change = 'replaced' AND time >= '2026-11-01'
GROUP BY system ORDER BY replaced DESC, system;
