-- Which hosts do most systems know, and with how many ports?
SELECT description, count(DISTINCT system) AS systems, sum(ports) AS all_ports FROM host
WHERE snapshot IN (SELECT snapshot FROM latest)
GROUP BY description ORDER BY systems DESC, description;
