-- Support looks for a user's reports.
CREATE INDEX report_by_user ON report (user) WHERE user <> '';
