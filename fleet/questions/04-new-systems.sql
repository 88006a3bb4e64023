-- Which systems have come since the tenth of the month?
SELECT system, min(time) AS since FROM snapshot GROUP BY system
HAVING min(time) >= '2026-11-10' ORDER BY since, system;
