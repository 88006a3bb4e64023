-- Which drives report another service state than 0?
SELECT system, id, serial, state FROM drive
WHERE state <> 0 AND snapshot IN (SELECT snapshot FROM latest)
ORDER BY system, id;
