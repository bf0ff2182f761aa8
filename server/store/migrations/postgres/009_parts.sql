-- The parts of the counts of past days are merged into one row each, the part 0. These find the others.
CREATE INDEX reports_in_parts ON day_reports (day) WHERE part > 0;
CREATE INDEX verdicts_in_parts ON day_verdicts (day) WHERE part > 0;
CREATE INDEX lines_in_parts ON day_lines (day) WHERE part > 0;
