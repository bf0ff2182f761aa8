-- The result of each line as a letter, p, f or u: a search reads the index instead of the large texts.
ALTER TABLE verdict ADD COLUMN results TEXT NOT NULL DEFAULT '';
UPDATE verdict SET results = (
    SELECT coalesce(group_concat(CASE coalesce(CASE type WHEN 'object' THEN json_extract(value, '$.result') END, '')
                                     WHEN 'pass' THEN 'p' WHEN 'fail' THEN 'f' ELSE 'u' END, ''), '')
    FROM json_each(CASE WHEN json_valid(lines) AND json_type(lines) = 'array' THEN lines ELSE '[]' END));
DROP INDEX verdict_by_referrer;
CREATE INDEX verdict_by_referrer ON verdict (referrer, report, requirement_set, total, results);
