-- Counts by the day (days since 1970, UTC) on which the reports were received; deleting reports leaves them as they are.
-- Of a session's verdicts on a product only the newest is counted: by the newest report, then by the newest requirements.
ALTER TABLE verdict ADD COLUMN counted INTEGER NOT NULL DEFAULT 1;

-- Each count is the sum of its parts, so that uploads at the same time seldom wait for each other to change one row.
CREATE TABLE day_reports (
    referrer BIGINT NOT NULL,  -- 0: reports for no product, or for one without published requirements
    day BIGINT NOT NULL,
    part INTEGER NOT NULL,
    reports BIGINT NOT NULL,
    PRIMARY KEY (referrer, day, part)
);

CREATE TABLE day_verdicts (
    referrer BIGINT NOT NULL,
    day BIGINT NOT NULL,
    requirement_set BIGINT NOT NULL,
    part INTEGER NOT NULL,
    pass BIGINT NOT NULL,
    fail BIGINT NOT NULL,
    unknown BIGINT NOT NULL,
    PRIMARY KEY (referrer, day, requirement_set, part)
);
CREATE INDEX verdicts_by_day ON day_verdicts (day);

CREATE TABLE day_lines (
    requirement_set BIGINT NOT NULL,
    day BIGINT NOT NULL,
    line INTEGER NOT NULL,  -- its place in the requirements, from 0 on
    part INTEGER NOT NULL,
    pass BIGINT NOT NULL,
    fail BIGINT NOT NULL,
    unknown BIGINT NOT NULL,
    PRIMARY KEY (requirement_set, day, line, part)
);

CREATE FUNCTION count_report() RETURNS trigger LANGUAGE plpgsql AS $$
BEGIN
    INSERT INTO day_reports AS kept
        VALUES (coalesce((SELECT id FROM referrer WHERE name = NEW.referrer), 0), NEW.received / 86400000, NEW.id % 8, 1)
        ON CONFLICT (referrer, day, part) DO UPDATE SET reports = kept.reports + 1;
    RETURN NULL;
END $$;
CREATE TRIGGER report_added AFTER INSERT ON report FOR EACH ROW EXECUTE FUNCTION count_report();

-- The result of each line; no rows for a text that is not a list.
CREATE FUNCTION results_in(lines TEXT) RETURNS TABLE (line INTEGER, result TEXT) LANGUAGE plpgsql IMMUTABLE AS $$
BEGIN
    RETURN QUERY SELECT (place - 1)::INTEGER, coalesce(CASE json_typeof(entry) WHEN 'object' THEN entry ->> 'result' END, '')
        FROM json_array_elements(lines::JSON) WITH ORDINALITY AS entries (entry, place);
EXCEPTION WHEN data_exception THEN
    RETURN;
END $$;

-- Adds a verdict to the counts (sign 1), or takes it away (-1).
CREATE FUNCTION count_verdict(counted verdict, received BIGINT, sign INTEGER, own_part INTEGER) RETURNS VOID
LANGUAGE plpgsql AS $$
BEGIN
    INSERT INTO day_verdicts AS kept
        VALUES (counted.referrer, received / 86400000, counted.requirement_set, own_part,
                sign * (counted.total = 'pass')::INTEGER, sign * (counted.total = 'fail')::INTEGER,
                sign * (counted.total NOT IN ('pass', 'fail'))::INTEGER)
        ON CONFLICT (referrer, day, requirement_set, part) DO UPDATE SET
            pass = kept.pass + excluded.pass, fail = kept.fail + excluded.fail, unknown = kept.unknown + excluded.unknown;
    INSERT INTO day_lines AS kept
        SELECT counted.requirement_set, received / 86400000, found.line, own_part, sign * (result = 'pass')::INTEGER,
               sign * (result = 'fail')::INTEGER, sign * (result NOT IN ('pass', 'fail'))::INTEGER
        FROM results_in(counted.lines) AS found ORDER BY found.line
        ON CONFLICT (requirement_set, day, line, part) DO UPDATE SET
            pass = kept.pass + excluded.pass, fail = kept.fail + excluded.fail, unknown = kept.unknown + excluded.unknown;
END $$;

CREATE FUNCTION verdict_added() RETURNS trigger LANGUAGE plpgsql AS $$
DECLARE
    own report;
    older verdict;
BEGIN
    SELECT * INTO own FROM report WHERE id = NEW.report;
    -- Verdicts on one session wait for each other.
    PERFORM pg_advisory_xact_lock(hashtextextended(own.session, NEW.referrer));
    -- The arrays keep both statements to the session's few reports, whatever the statistics say.
    FOR older IN
        UPDATE verdict SET counted = 0
        WHERE verdict.report = ANY (ARRAY(SELECT id FROM report WHERE session = own.session))
            AND verdict.referrer + 0 = NEW.referrer AND verdict.counted = 1
            AND (verdict.report + 0, verdict.requirement_set) < (NEW.report, NEW.requirement_set)
        RETURNING verdict.*
    LOOP
        PERFORM count_verdict(older, received, -1, (NEW.report % 8)::INTEGER) FROM report WHERE id = older.report;
    END LOOP;
    IF EXISTS (
        SELECT 1 FROM verdict AS newer
        WHERE newer.report = ANY (ARRAY(SELECT id FROM report WHERE session = own.session))
            AND newer.referrer + 0 = NEW.referrer AND newer.counted = 1
            AND (newer.report + 0, newer.requirement_set) > (NEW.report, NEW.requirement_set))
    THEN
        UPDATE verdict SET counted = 0 WHERE report = NEW.report AND requirement_set = NEW.requirement_set;
    ELSE
        PERFORM count_verdict(NEW, own.received, 1, (NEW.report % 8)::INTEGER);
    END IF;
    RETURN NULL;
END $$;
CREATE TRIGGER verdict_added AFTER INSERT ON verdict FOR EACH ROW EXECUTE FUNCTION verdict_added();

CREATE FUNCTION verdict_changed() RETURNS trigger LANGUAGE plpgsql AS $$
BEGIN
    PERFORM count_verdict(OLD, received, -1, (NEW.report % 8)::INTEGER),
            count_verdict(NEW, received, 1, (NEW.report % 8)::INTEGER) FROM report WHERE id = NEW.report;
    RETURN NULL;
END $$;
CREATE TRIGGER verdict_changed AFTER UPDATE OF total, lines ON verdict FOR EACH ROW
    WHEN (OLD.counted = 1 AND (OLD.total <> NEW.total OR OLD.lines <> NEW.lines)) EXECUTE FUNCTION verdict_changed();

INSERT INTO day_reports
    SELECT coalesce(referrer.id, 0), received / 86400000, 0, count(*) FROM report LEFT JOIN referrer ON name = report.referrer
    GROUP BY 1, 2;
UPDATE verdict SET counted = 0 FROM (
    SELECT verdict.report, requirement_set, row_number() OVER (
        PARTITION BY verdict.referrer, session ORDER BY verdict.report DESC, requirement_set DESC) AS age
    FROM verdict JOIN report ON report.id = verdict.report) AS aged
    WHERE aged.report = verdict.report AND aged.requirement_set = verdict.requirement_set AND age > 1;
INSERT INTO day_verdicts
    SELECT verdict.referrer, received / 86400000, requirement_set, 0, count(*) FILTER (WHERE total = 'pass'),
           count(*) FILTER (WHERE total = 'fail'), count(*) FILTER (WHERE total NOT IN ('pass', 'fail'))
    FROM verdict JOIN report ON report.id = verdict.report WHERE counted = 1 GROUP BY 1, 2, 3;
INSERT INTO day_lines
    SELECT requirement_set, received / 86400000, line, 0, count(*) FILTER (WHERE result = 'pass'),
           count(*) FILTER (WHERE result = 'fail'), count(*) FILTER (WHERE result NOT IN ('pass', 'fail'))
    FROM verdict JOIN report ON report.id = verdict.report CROSS JOIN LATERAL results_in(lines)
    WHERE counted = 1 GROUP BY 1, 2, 3;
