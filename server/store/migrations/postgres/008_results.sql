-- The result of each line as a letter, p, f or u: a search does not read the large texts. The change of the type writes the
-- table once, which leaves no space to reclaim.
CREATE FUNCTION letters_in(lines TEXT) RETURNS TEXT LANGUAGE SQL IMMUTABLE AS $$
    SELECT coalesce(string_agg(CASE result WHEN 'pass' THEN 'p' WHEN 'fail' THEN 'f' ELSE 'u' END, '' ORDER BY line), '')
    FROM results_in(lines)
$$;
DROP INDEX verdict_by_referrer;
ALTER TABLE verdict ADD COLUMN results TEXT COLLATE "C" NOT NULL DEFAULT '';
ALTER TABLE verdict ALTER COLUMN results DROP DEFAULT, ALTER COLUMN results TYPE TEXT COLLATE "C" USING letters_in(lines);
ALTER TABLE verdict ALTER COLUMN results SET DEFAULT '';
DROP FUNCTION letters_in;
CREATE INDEX verdict_by_referrer ON verdict (referrer, report, total, results);
