-- What the administration needs: who wrote which requirements, drafts, accounts, and quick ways to the newest reports.
ALTER TABLE requirement_set ADD COLUMN author TEXT NOT NULL DEFAULT '';

ALTER TABLE report ADD COLUMN machine TEXT NOT NULL DEFAULT '';
CREATE INDEX report_by_referrer ON report (referrer, id);
CREATE INDEX report_by_machine ON report (machine) WHERE machine <> '';

CREATE TABLE new_verdict (
    report INTEGER NOT NULL REFERENCES report ON DELETE CASCADE,
    requirement_set INTEGER NOT NULL REFERENCES requirement_set,
    referrer INTEGER NOT NULL REFERENCES referrer,
    judged INTEGER NOT NULL,
    total TEXT NOT NULL,
    item TEXT NOT NULL,
    lines TEXT NOT NULL,  -- large: the row keeps a number of its own, and indexes stay small
    UNIQUE (report, requirement_set)
) STRICT;
INSERT INTO new_verdict (report, requirement_set, referrer, judged, total, item, lines)
    SELECT report, requirement_set, referrer, judged, total, item, lines
    FROM verdict JOIN requirement_set ON requirement_set.id = requirement_set;
DROP TABLE verdict;
ALTER TABLE new_verdict RENAME TO verdict;
CREATE INDEX verdict_by_referrer ON verdict (referrer, report, requirement_set, total);
CREATE INDEX verdict_by_total ON verdict (total, report, requirement_set);
CREATE INDEX verdict_by_both ON verdict (referrer, total, report, requirement_set);

-- A draft that was published or dropped stays as an empty text, so that its revision never comes again.
CREATE TABLE draft (
    referrer TEXT PRIMARY KEY,
    text TEXT NOT NULL,
    revision INTEGER NOT NULL,
    changed INTEGER NOT NULL,
    author TEXT NOT NULL
) STRICT;

CREATE TABLE account (
    name TEXT PRIMARY KEY,
    hash TEXT NOT NULL,
    role TEXT NOT NULL CHECK (role IN ('reader', 'editor'))
) STRICT;

-- The key is a hash: whoever reads the database cannot take over a log-in.
CREATE TABLE login_session (
    key TEXT PRIMARY KEY,
    account TEXT NOT NULL REFERENCES account ON DELETE CASCADE,
    kind TEXT NOT NULL CHECK (kind IN ('browser', 'program')),
    form_token TEXT NOT NULL,
    ends INTEGER NOT NULL
) STRICT;
CREATE INDEX login_by_account ON login_session (account);
CREATE INDEX login_by_end ON login_session (ends);

CREATE TABLE audit (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    time INTEGER NOT NULL,
    account TEXT NOT NULL,
    action TEXT NOT NULL,
    subject TEXT NOT NULL
) STRICT;
