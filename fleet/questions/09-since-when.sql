-- And since when have they had it?
SELECT system, serial, min(collected) AS since FROM drive
WHERE serial IN (
    SELECT serial FROM drive
    WHERE snapshot IN (SELECT snapshot FROM latest) AND firmware = 'T0C9')
    AND firmware = 'T0C9'
GROUP BY system, serial ORDER BY since, system, serial;
