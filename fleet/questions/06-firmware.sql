-- Which firmware levels run on how many drives of each part number, in how many systems?
SELECT part_number, firmware, count(*) AS drives, count(DISTINCT system) AS systems FROM drive
WHERE snapshot IN (SELECT snapshot FROM latest)
GROUP BY part_number, firmware ORDER BY part_number, firmware;
