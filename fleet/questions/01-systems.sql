-- Which systems are there, and when was each heard of last?
SELECT system, facility, time, complete FROM latest
ORDER BY system;
