#include "server/store/SqlStore.h"

#include <chrono>
#include <limits>

#include "server/store/Rows.h"

namespace kel::server {

namespace {

PublishedSet SetOf(const SqlRow& row)
{
    return {row.Number(0), Small(row, 1), row.Number(2), row.Text(3)};
}

const std::string SetsOf =
    "SELECT requirement_set.id, version, published, author FROM requirement_set "
    "JOIN referrer ON referrer.id = requirement_set.referrer WHERE name = $1 ORDER BY version DESC";

/// Publishes inside of a transaction.
int PublishNow(SqlConnection& connection, const std::string& referrer, const std::string& text,
               const std::string& author, const std::string& account)
{
    connection.Query("INSERT INTO referrer (name) VALUES ($1) ON CONFLICT DO NOTHING", {referrer});
    // Whoever publishes for the same referrer at the same time waits here.
    connection.Query("UPDATE referrer SET name = name WHERE name = $1", {referrer});
    const SqlRows newest = connection.Query(SetsOf + " LIMIT 1", {referrer});
    int version = 1;
    if (!newest.empty()) {
        const SqlRows same =
            connection.Query("SELECT text FROM requirement_set WHERE id = $1", {newest[0].Number(0)});
        if (same.at(0).Text(0) == text)
            return Small(newest[0], 1);
        version = Small(newest[0], 1) + 1;
    }
    connection.Query(
        "INSERT INTO requirement_set (referrer, version, published, text, author) "
        "SELECT id, $1, $2, $3, $4 FROM referrer WHERE name = $5",
        {std::int64_t{version}, Now(), text, author, referrer});
    AddAuditEntry(connection, account, "published", referrer + ", version " + std::to_string(version));
    return version;
}

/// Empties a draft of that revision, inside of a transaction; false when it has another one meanwhile.
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

std::int64_t Now()
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

SqlStore::SqlStore(std::shared_ptr<SqlPool> quick, std::shared_ptr<SqlPool> readers,
                   std::shared_ptr<SqlPool> writers, const std::string& file, const Bounds& bounds)
    : quick(std::move(quick)),
      readers(std::move(readers)),
      writers(std::move(writers)),
      room(file, bounds),
      sessionReports(bounds.sessionReports > 0 ? bounds.sessionReports
                                               : std::numeric_limits<std::int64_t>::max())
{
}

SqlRows SqlStore::Read(const std::string& sql, const std::vector<SqlValue>& values)
{
    return readers->Borrow()->Query(sql, values);
}

StoreState SqlStore::State()
{
    const auto connection = quick->Borrow();
    connection->Query("SELECT count(*) FROM (SELECT 1 FROM requirement_set LIMIT 1) AS any_set");
    if (!connection->IsWritable())
        return StoreState::ReadOnly;
    room.Measure(*connection);
    return HasRoom() ? StoreState::Ready : StoreState::NoRoom;
}

std::int64_t SqlStore::Keep(const NewReport& report)
{
    const auto connection = writers->Borrow();
    room.RequireForReport(*connection);
    const SqlRows added = connection->Query(
        "INSERT INTO report (session, referrer, \"user\", machine, received, body) "
        "SELECT $1, $2, $3, $4, $5, $6 WHERE "
        "(SELECT count(*) FROM (SELECT 1 FROM report WHERE session = $1 LIMIT $7) AS others) < $7 "
        "RETURNING id",
        {report.session, report.referrer, report.user, report.machine, Now(), report.body, sessionReports});
    if (added.empty())
        throw NoRoom("the session has as many reports as session_reports allows");
    return added.at(0).Number(0);
}

std::optional<std::int64_t> SqlStore::NewestReport(const std::string& session)
{
    return First(Read("SELECT id FROM report WHERE session = $1 ORDER BY id DESC LIMIT 1", {session}),
                 [](const SqlRow& row) { return row.Number(0); });
}

std::optional<PublishedSet> SqlStore::NewestSet(const std::string& referrer)
{
    return First(quick->Borrow()->Query(SetsOf + " LIMIT 1", {referrer}), SetOf);
}

std::string SqlStore::SetText(std::int64_t set)
{
    const SqlRows rows = quick->Borrow()->Query("SELECT text FROM requirement_set WHERE id = $1", {set});
    return rows.empty() ? std::string() : rows[0].Text(0);
}

void SqlStore::Keep(const NewVerdict& verdict)
{
    const auto connection = writers->Borrow();
    room.RequireForVerdict(*connection);
    connection->Query(
        "INSERT INTO verdict (report, requirement_set, referrer, judged, item, total, lines) "
        "SELECT report.id, requirement_set.id, requirement_set.referrer, $1, $2, $3, $4 "
        "FROM report, requirement_set WHERE report.id = $5 AND requirement_set.id = $6" +
            std::string(connection->ShareReports()) +
            " ON CONFLICT (report, requirement_set) DO UPDATE "
            "SET judged = excluded.judged, item = excluded.item, total = excluded.total, lines = "
            "excluded.lines",
        {Now(), verdict.item, verdict.total, verdict.lines, verdict.report, verdict.set});
}

std::vector<Product> SqlStore::Products()
{
    const SqlRows rows = Read(
        "SELECT names.name, coalesce(version, 0), coalesce(published, 0), "
        "(SELECT count(*) FROM draft WHERE draft.referrer = names.name AND draft.text <> '') "
        "FROM (SELECT name FROM referrer UNION SELECT referrer FROM draft WHERE text <> '') AS names "
        "LEFT JOIN referrer ON referrer.name = names.name "
        "LEFT JOIN requirement_set ON requirement_set.referrer = referrer.id AND version = "
        "(SELECT max(version) FROM requirement_set AS other WHERE other.referrer = referrer.id) "
        "ORDER BY names.name");
    return Each(rows, [](const SqlRow& row) {
        return Product{row.Text(0), Small(row, 1), row.Number(2), row.Number(3) > 0};
    });
}

std::vector<PublishedSet> SqlStore::Versions(const std::string& referrer)
{
    return Each(Read(SetsOf, {referrer}), SetOf);
}

int SqlStore::Publish(const std::string& referrer, const std::string& text, const std::string& author,
                      const std::string& account)
{
    return Change(
        [&](SqlConnection& connection) { return PublishNow(connection, referrer, text, author, account); });
}

std::optional<Draft> SqlStore::FindDraft(const std::string& referrer)
{
    return First(Read("SELECT text, revision, changed, author FROM draft WHERE referrer = $1 AND text <> ''",
                      {referrer}),
                 [](const SqlRow& row) {
                     return Draft{row.Text(0), Small(row, 1), row.Number(2), row.Text(3)};
                 });
}

std::optional<int> SqlStore::KeepDraft(const std::string& referrer, const std::string& text, int revision,
                                       const std::string& author)
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
    return Change([&](SqlConnection& connection) {
        const auto saved =
            First(connection.Query(begin, values), [](const SqlRow& row) { return Small(row, 0); });
        if (saved)
            AddAuditEntry(connection, author, "saved draft", referrer);
        return saved;
    });
}

std::optional<int> SqlStore::PublishDraft(const std::string& referrer, int revision,
                                          const std::string& author)
{
    return Change([&](SqlConnection& connection) -> std::optional<int> {
        const SqlRows draft =
            connection.Query("SELECT text FROM draft WHERE referrer = $1 AND revision = $2 AND text <> ''",
                             {referrer, std::int64_t{revision}});
        if (draft.empty() || !Empty(connection, referrer, revision))
            return std::nullopt;
        return PublishNow(connection, referrer, draft[0].Text(0), author, author);
    });
}

bool SqlStore::DropDraft(const std::string& referrer, int revision, const std::string& account)
{
    return Change([&](SqlConnection& connection) {
        return Empty(connection, referrer, revision) &&
               AddAuditEntry(connection, account, "dropped draft", referrer) != 0;
    });
}

}  // namespace kel::server
