-- Where has this drive been through the years?
SELECT collected, system, id FROM drive
WHERE serial = 'WK00000001' AND system IN (SELECT system FROM snapshot)
ORDER BY collected;
