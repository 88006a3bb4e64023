-- Where has this drive been through the years?
SELECT collected, system, id FROM drive
WHERE serial = 'WK00000001' AND snapshot IN (SELECT snapshot FROM snapshot)
ORDER BY collected;
