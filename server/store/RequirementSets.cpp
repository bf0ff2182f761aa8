#include "server/store/RequirementSets.h"

#include <fmt/format.h>
#include <algorithm>

#include "server/store/Audit.h"
#include "server/store/Conditions.h"
#include "server/store/Rows.h"
#include "verdict/Requirements.h"

namespace kel::server {

namespace {

constexpr std::size_t NamesAtOnce = 50;  // so that few different statements are prepared

PublishedSet ReadSet(SqlRow& row)
{
    return {row.Number(), row.Small(), row.Number(), row.Text()};
}

const std::string SelectSets =
    "SELECT requirement_set.id, version, published, author FROM requirement_set "
    "JOIN referrer ON referrer.id = requirement_set.referrer WHERE name = $1 ORDER BY version DESC";

std::string SelectText(SqlConnection& connection, std::int64_t set)
{
    return First(connection.Query("SELECT text FROM requirement_set WHERE id = $1", {set}),
                 [](SqlRow& row) { return row.Text(); })
        .value_or("");
}

/// Publishes as a part of a transaction.
int PublishNow(SqlConnection& connection, const std::string& referrer, const std::string& text,
               const std::string& author, const std::string& account)
{
    connection.Query("INSERT INTO referrer (name) VALUES ($1) ON CONFLICT DO NOTHING", {referrer});
    // A concurrent publication for the same referrer waits here.
    connection.Query("UPDATE referrer SET name = name WHERE name = $1", {referrer});
    const auto newest = First(connection.Query(SelectSets + " LIMIT 1", {referrer}), ReadSet);
    if (newest && SelectText(connection, newest->id) == text)
        return newest->version;
    const int version = newest ? newest->version + 1 : 1;
    const auto read = Requirements::ReadStored(text);
    const std::string title = read ? read->title.Default() : "";
    connection.Query(
        "INSERT INTO requirement_set (referrer, version, published, text, author, title) "
        "SELECT id, $1, $2, $3, $4, $5 FROM referrer WHERE name = $6",
        {std::int64_t{version}, Now(), text, author, title, referrer});
    Audit::AddEntry(connection, account, "published", fmt::format("{}, version {}", referrer, version));
    return version;
}

/// Empties the draft of that revision, as a part of a transaction; false when it has another one meanwhile.
bool Empty(SqlConnection& connection, const std::string& referrer, int revision)
{
    return !connection
                .Query(
                    "UPDATE draft SET text = '', revision = revision + 1 "
                    "WHERE referrer = $1 AND revision = $2 AND text <> '' RETURNING revision",
                    {referrer, std::int64_t{revision}})
                .empty();
}

}  // namespace

std::optional<PublishedSet> RequirementSets::Newest(const std::string& referrer)
{
    return First(database.BorrowQuick()->Query(SelectSets + " LIMIT 1", {referrer}), ReadSet);
}

std::optional<PublishedSet> RequirementSets::NewestForPage(const std::string& referrer)
{
    return First(database.Read(SelectSets + " LIMIT 1", {referrer}), ReadSet);
}

std::string RequirementSets::Text(std::int64_t set)
{
    return SelectText(*database.BorrowQuick(), set);
}

std::vector<PublishedDay> RequirementSets::PublishedDays()
{
    return Each(database.Read("SELECT published / 86400000 AS day, count(*), min(name), max(version) FROM "
                              "requirement_set JOIN referrer "
                              "ON referrer.id = requirement_set.referrer GROUP BY day ORDER BY day"),
                [](SqlRow& row) {
                    return PublishedDay{row.Number(), row.Small(), row.Text(), row.Small()};
                });
}

std::vector<Product> RequirementSets::Products()
{
    return Each(
        database.Read(
            "SELECT names.name, coalesce(version, 0), coalesce(published, 0), "
            "(SELECT count(*) FROM draft WHERE draft.referrer = names.name AND draft.text <> ''), "
            "coalesce(title, '') "
            "FROM (SELECT name FROM referrer UNION SELECT referrer FROM draft WHERE text <> '') AS names "
            "LEFT JOIN referrer ON referrer.name = names.name "
            "LEFT JOIN requirement_set ON requirement_set.referrer = referrer.id AND version = "
            "(SELECT max(version) FROM requirement_set AS other WHERE other.referrer = referrer.id) "
            "ORDER BY names.name"),
        [](SqlRow& row) {
            return Product{row.Text(), row.Small(), row.Number(), row.Number() > 0, row.Text()};
        });
}

std::map<std::string, std::string> RequirementSets::Titles(const std::vector<std::string>& referrers)
{
    std::map<std::string, std::string> titles;
    for (std::size_t next = 0; next < referrers.size(); next += NamesAtOnce) {
        std::vector<SqlValue> names;
        for (std::size_t i = next; i < next + NamesAtOnce; ++i)
            names.emplace_back(referrers[std::min(i, referrers.size() - 1)]);
        for (SqlRow& row : database.Read(
                 "SELECT name, title FROM referrer JOIN requirement_set ON requirement_set.referrer "
                 "= referrer.id WHERE name IN (" +
                     ParameterList(1, NamesAtOnce) +
                     ") AND title <> '' AND version = (SELECT max(version) FROM requirement_set AS "
                     "other WHERE other.referrer = referrer.id)",
                 names)) {
            const std::string name = row.Text();
            titles[name] = row.Text();
        }
    }
    return titles;
}

std::vector<PublishedSet> RequirementSets::Versions(const std::string& referrer)
{
    return Each(database.Read(SelectSets, {referrer}), ReadSet);
}

int RequirementSets::Publish(const std::string& referrer, const std::string& text, const std::string& author,
                             const std::string& account)
{
    return database.Change(
        [&](SqlConnection& connection) { return PublishNow(connection, referrer, text, author, account); });
}

std::optional<Draft> RequirementSets::FindDraft(const std::string& referrer)
{
    return First(
        database.Read("SELECT text, revision, changed, author FROM draft WHERE referrer = $1 AND text <> ''",
                      {referrer}),
        [](SqlRow& row) {
            return Draft{row.Text(), row.Small(), row.Number(), row.Text()};
        });
}

std::optional<int> RequirementSets::SaveDraft(const std::string& referrer, const std::string& text,
                                              int revision, const std::string& author)
{
    const std::string begin = revision == 0 ? "INSERT INTO draft (text, changed, author, referrer, revision) "
                                              "VALUES ($1, $2, $3, $4, 1) ON CONFLICT (referrer) DO UPDATE "
                                              "SET text = excluded.text, changed = excluded.changed, "
                                              "author = excluded.author, revision = draft.revision + 1 "
                                              "WHERE draft.text = '' RETURNING revision"
                                            : "UPDATE draft SET text = $1, changed = $2, author = $3, "
                                              "revision = revision + 1 "
                                              "WHERE referrer = $4 AND revision = $5 AND text <> '' "
                                              "RETURNING revision";
    std::vector<SqlValue> values{text, Now(), author, referrer};
    if (revision != 0)
        values.emplace_back(std::int64_t{revision});
    return database.Change([&](SqlConnection& connection) {
        const auto saved = First(connection.Query(begin, values), [](SqlRow& row) { return row.Small(); });
        if (saved)
            Audit::AddEntry(connection, author, "saved draft", referrer);
        return saved;
    });
}

std::optional<int> RequirementSets::PublishDraft(const std::string& referrer, int revision,
                                                 const std::string& author)
{
    return database.Change([&](SqlConnection& connection) -> std::optional<int> {
        SqlRows draft =
            connection.Query("SELECT text FROM draft WHERE referrer = $1 AND revision = $2 AND text <> ''",
                             {referrer, std::int64_t{revision}});
        if (draft.empty() || !Empty(connection, referrer, revision))
            return std::nullopt;
        return PublishNow(connection, referrer, draft[0].Text(), author, author);
    });
}

bool RequirementSets::DropDraft(const std::string& referrer, int revision, const std::string& account)
{
    return database.Change([&](SqlConnection& connection) {
        return Empty(connection, referrer, revision) &&
               Audit::AddEntry(connection, account, "dropped draft", referrer) != 0;
    });
}

}  // namespace kel::server
