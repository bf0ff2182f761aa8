-- Support looks for a user's reports; the name may be of any length.
CREATE INDEX report_by_user ON report USING hash ("user") WHERE "user" <> '';
