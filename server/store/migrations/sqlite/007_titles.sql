-- The title of requirements, which the pages show beside a product's name: of several languages English, or else the first.
ALTER TABLE requirement_set ADD COLUMN title TEXT NOT NULL DEFAULT '';
UPDATE requirement_set SET title = coalesce(
    CASE json_type(text, '$.title')
        WHEN 'text' THEN json_extract(text, '$.title')
        WHEN 'object' THEN (
            SELECT value FROM json_each(text, '$.title') WHERE type = 'text' ORDER BY lower(key) <> 'en', lower(key) LIMIT 1)
    END, '')
    WHERE json_valid(text);
