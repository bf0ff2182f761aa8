-- The title of requirements, which the pages show beside a product's name: of several languages English, or else the first.
ALTER TABLE requirement_set ADD COLUMN title TEXT NOT NULL DEFAULT '';
CREATE FUNCTION title_in(text TEXT) RETURNS TEXT LANGUAGE plpgsql IMMUTABLE AS $$
DECLARE
    title JSON := text::JSON -> 'title';
BEGIN
    RETURN coalesce(CASE json_typeof(title)
        WHEN 'string' THEN title #>> '{}'
        WHEN 'object' THEN (
            SELECT value #>> '{}' FROM json_each(title) WHERE json_typeof(value) = 'string'
            ORDER BY lower(key) <> 'en', lower(key) COLLATE "C" LIMIT 1)
    END, '');
EXCEPTION WHEN data_exception THEN
    RETURN '';
END $$;
UPDATE requirement_set SET title = title_in(text);
DROP FUNCTION title_in;
