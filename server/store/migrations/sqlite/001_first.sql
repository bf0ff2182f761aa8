-- Times are milliseconds since 1970, UTC.
CREATE TABLE referrer (
    id INTEGER PRIMARY KEY,
    name TEXT NOT NULL UNIQUE
) STRICT;

-- Every version that was ever published; the newest counts.
CREATE TABLE requirement_set (
    id INTEGER PRIMARY KEY,
    referrer INTEGER NOT NULL REFERENCES referrer,
    version INTEGER NOT NULL,
    published INTEGER NOT NULL,
    text TEXT NOT NULL,
    UNIQUE (referrer, version)
) STRICT;

-- Reports are appended; the newest of a session counts. The referrer is what the report says, known or not.
CREATE TABLE report (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    session TEXT NOT NULL,
    referrer TEXT NOT NULL,
    user TEXT NOT NULL,
    received INTEGER NOT NULL,
    body TEXT NOT NULL
) STRICT;
CREATE INDEX report_by_session ON report (session, id);
CREATE INDEX report_by_time ON report (received);

CREATE TABLE verdict (
    report INTEGER NOT NULL REFERENCES report ON DELETE CASCADE,
    requirement_set INTEGER NOT NULL REFERENCES requirement_set,
    judged INTEGER NOT NULL,
    item TEXT NOT NULL,
    total TEXT NOT NULL,
    lines TEXT NOT NULL,
    PRIMARY KEY (report, requirement_set)
) STRICT, WITHOUT ROWID;
