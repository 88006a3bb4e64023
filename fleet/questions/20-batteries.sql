-- Which batteries come to their end?
SELECT system, rack, id, remaining_life FROM battery
WHERE remaining_life < 70 AND snapshot IN (SELECT snapshot FROM latest)
ORDER BY remaining_life, system, id;
