-- Whose newest document is incomplete, and what does it lack?
SELECT system, time, missing FROM latest WHERE complete = 0
ORDER BY system;
