-- Which drives with this firmware are where?
SELECT system, rack, enclosure, slot, serial FROM drive
WHERE snapshot IN (SELECT snapshot FROM latest) AND firmware = 'T0C9'
ORDER BY system, rack, enclosure, slot;
