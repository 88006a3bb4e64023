-- Which drives were taken out this month and are nowhere now?
SELECT time, system, coalesce(old_serial, serial) AS gone FROM change
WHERE kind = 'drive' AND change IN ('removed', 'replaced') AND time >= '2026-11-01'
    AND coalesce(old_serial, serial) NOT IN (
        SELECT serial FROM drive WHERE serial IS NOT NULL AND snapshot IN (SELECT snapshot FROM latest))
ORDER BY time, gone;
