-- Going through reports by number keeps no report waiting any more. A report that is being stored has, from before it gets
-- its number until it can be seen, a lock that says which number was the last before: its own is greater. Up to the least
-- of these, and to the number that was last before they were looked at, all reports can be seen.
CREATE OR REPLACE FUNCTION number_report() RETURNS trigger LANGUAGE plpgsql AS $$
DECLARE
    last BIGINT;
BEGIN
    SELECT CASE WHEN is_called THEN last_value ELSE 0 END INTO last FROM report_number;
    PERFORM pg_advisory_xact_lock_shared(1262832723, (last % 2147483648)::INTEGER);
    NEW.id := nextval('report_number');
    RETURN NEW;
END $$;

CREATE OR REPLACE FUNCTION settled_report() RETURNS BIGINT LANGUAGE plpgsql AS $$
DECLARE
    last BIGINT;
    behind BIGINT;
BEGIN
    SELECT CASE WHEN is_called THEN last_value ELSE 0 END INTO last FROM report_number;
    -- A lock's key has 31 of the number's bits. Those that were taken since then are ahead, and do not matter.
    SELECT max(distance) INTO behind FROM (
        SELECT (last - objid::BIGINT) & 2147483647 AS distance FROM pg_locks
            WHERE locktype = 'advisory' AND classid = 1262832723 AND objsubid = 2
                AND database = (SELECT oid FROM pg_database WHERE datname = current_database())
    ) AS held WHERE distance < 1073741824;
    RETURN last - coalesce(behind, 0);
END $$;
