-- Counts by the day (days since 1970, UTC) on which the reports were received; deleting reports leaves them as they are.
-- Of a session's verdicts on a product only the newest is counted: by the newest report, then by the newest requirements.
ALTER TABLE verdict ADD COLUMN counted INTEGER NOT NULL DEFAULT 1;

CREATE TABLE day_reports (
    referrer INTEGER NOT NULL,  -- 0: reports for no product, or for one without published requirements
    day INTEGER NOT NULL,
    reports INTEGER NOT NULL,
    PRIMARY KEY (referrer, day)
) STRICT, WITHOUT ROWID;

CREATE TABLE day_verdicts (
    referrer INTEGER NOT NULL,
    day INTEGER NOT NULL,
    requirement_set INTEGER NOT NULL,
    pass INTEGER NOT NULL,
    fail INTEGER NOT NULL,
    unknown INTEGER NOT NULL,
    PRIMARY KEY (referrer, day, requirement_set)
) STRICT, WITHOUT ROWID;
CREATE INDEX verdicts_by_day ON day_verdicts (day);

CREATE TABLE day_lines (
    requirement_set INTEGER NOT NULL,
    day INTEGER NOT NULL,
    line INTEGER NOT NULL,  -- its place in the requirements, from 0 on
    pass INTEGER NOT NULL,
    fail INTEGER NOT NULL,
    unknown INTEGER NOT NULL,
    PRIMARY KEY (requirement_set, day, line)
) STRICT, WITHOUT ROWID;

CREATE TRIGGER report_added AFTER INSERT ON report BEGIN
    INSERT INTO day_reports
        SELECT coalesce((SELECT id FROM referrer WHERE name = NEW.referrer), 0), NEW.received / 86400000, 1 WHERE true
        ON CONFLICT DO UPDATE SET reports = reports + 1;
END;

-- A row that is inserted here adds a verdict to the counts (sign 1), or takes it away (-1).
CREATE VIEW count_verdict AS SELECT referrer, 0 AS day, requirement_set, total, lines, 1 AS sign FROM verdict;
CREATE TRIGGER count_verdict INSTEAD OF INSERT ON count_verdict BEGIN
    INSERT INTO day_verdicts
        VALUES (NEW.referrer, NEW.day, NEW.requirement_set, NEW.sign * (NEW.total = 'pass'), NEW.sign * (NEW.total = 'fail'),
                NEW.sign * (NEW.total NOT IN ('pass', 'fail')))
        ON CONFLICT DO UPDATE SET pass = pass + excluded.pass, fail = fail + excluded.fail, unknown = unknown + excluded.unknown;
    INSERT INTO day_lines
        SELECT NEW.requirement_set, NEW.day, line, NEW.sign * (result = 'pass'), NEW.sign * (result = 'fail'),
               NEW.sign * (result NOT IN ('pass', 'fail'))
        FROM (SELECT key AS line, coalesce(CASE type WHEN 'object' THEN json_extract(value, '$.result') END, '') AS result
              FROM json_each(CASE WHEN json_valid(NEW.lines) AND json_type(NEW.lines) = 'array' THEN NEW.lines ELSE '[]' END))
        WHERE true
        ON CONFLICT DO UPDATE SET pass = pass + excluded.pass, fail = fail + excluded.fail, unknown = unknown + excluded.unknown;
END;

-- The counted verdicts of the session that the report `own` is of. CROSS JOIN and the signs keep SQLite to the session's
-- few reports: by its own choice it reads all verdicts on the product.
CREATE VIEW session_verdict AS
    SELECT own.id AS own, verdict.rowid AS place, +verdict.report AS report, +verdict.referrer AS referrer,
           +verdict.requirement_set AS requirement_set, report.received / 86400000 AS day, verdict.total, verdict.lines
    FROM report AS own CROSS JOIN report ON report.session = own.session CROSS JOIN verdict ON verdict.report = report.id
    WHERE verdict.counted = 1;

CREATE TRIGGER verdict_added AFTER INSERT ON verdict BEGIN
    INSERT INTO count_verdict
        SELECT referrer, day, requirement_set, total, lines, -1 FROM session_verdict
        WHERE own = NEW.report AND referrer = NEW.referrer AND (report, requirement_set) < (NEW.report, NEW.requirement_set);
    UPDATE verdict SET counted = 0 WHERE rowid IN (
        SELECT place FROM session_verdict
        WHERE own = NEW.report AND referrer = NEW.referrer AND (report, requirement_set) < (NEW.report, NEW.requirement_set));
    UPDATE verdict SET counted = 0 WHERE rowid = NEW.rowid AND EXISTS (
        SELECT 1 FROM session_verdict
        WHERE own = NEW.report AND referrer = NEW.referrer AND (report, requirement_set) > (NEW.report, NEW.requirement_set));
    INSERT INTO count_verdict
        SELECT referrer, day, requirement_set, total, lines, 1 FROM session_verdict
        WHERE own = NEW.report AND place = NEW.rowid;
END;

CREATE TRIGGER verdict_changed AFTER UPDATE OF total, lines ON verdict
    WHEN OLD.counted = 1 AND (OLD.total <> NEW.total OR OLD.lines <> NEW.lines) BEGIN
    INSERT INTO count_verdict
        SELECT OLD.referrer, received / 86400000, OLD.requirement_set, OLD.total, OLD.lines, -1 FROM report WHERE id = OLD.report;
    INSERT INTO count_verdict
        SELECT NEW.referrer, received / 86400000, NEW.requirement_set, NEW.total, NEW.lines, 1 FROM report WHERE id = NEW.report;
END;

INSERT INTO day_reports
    SELECT coalesce(referrer.id, 0), received / 86400000, count(*) FROM report LEFT JOIN referrer ON name = report.referrer
    GROUP BY 1, 2;
UPDATE verdict SET counted = 0 WHERE rowid IN (
    SELECT place FROM (
        SELECT verdict.rowid AS place, row_number() OVER (
            PARTITION BY verdict.referrer, session ORDER BY verdict.report DESC, requirement_set DESC) AS age
        FROM verdict JOIN report ON report.id = verdict.report)
    WHERE age > 1);
INSERT INTO day_verdicts
    SELECT verdict.referrer, received / 86400000, requirement_set, sum(total = 'pass'), sum(total = 'fail'),
           sum(total NOT IN ('pass', 'fail'))
    FROM verdict JOIN report ON report.id = verdict.report WHERE counted = 1 GROUP BY 1, 2, 3;
INSERT INTO day_lines
    SELECT requirement_set, day, line, sum(result = 'pass'), sum(result = 'fail'), sum(result NOT IN ('pass', 'fail'))
    FROM (SELECT requirement_set, received / 86400000 AS day, key AS line,
                 coalesce(CASE type WHEN 'object' THEN json_extract(value, '$.result') END, '') AS result
          FROM verdict JOIN report ON report.id = verdict.report JOIN json_each(
              CASE WHEN json_valid(lines) AND json_type(lines) = 'array' THEN lines ELSE '[]' END)
          WHERE counted = 1)
    GROUP BY 1, 2, 3;
