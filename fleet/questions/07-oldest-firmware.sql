-- What are the oldest and the newest firmware of each part number?
SELECT part_number, min(firmware) AS oldest, max(firmware) AS newest FROM drive
WHERE snapshot IN (SELECT snapshot FROM latest)
GROUP BY part_number ORDER BY part_number;
