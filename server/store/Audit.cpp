#include "server/store/Audit.h"

#include "server/store/Rows.h"

namespace kel::server {

namespace {

constexpr std::int64_t Year = 365LL * 24 * 3'600'000;  // milliseconds

}  // namespace

void Audit::Add(const std::string& account, const std::string& action, const std::string& subject)
{
    database.Change(
        [&](SqlConnection& connection) { return AddEntry(connection, account, action, subject); });
}

std::vector<AuditEntry> Audit::Entries(std::int64_t beforeId, int count)
{
    const std::string before = beforeId > 0 ? "WHERE id < $2 " : "";
    std::vector<SqlValue> values{std::int64_t{count}};
    if (beforeId > 0)
        values.emplace_back(beforeId);
    return Each(database.Read("SELECT id, time, account, action, subject FROM audit " + before +
                                  "ORDER BY id DESC LIMIT $1",
                              values),
                [](SqlRow& row) {
                    return AuditEntry{row.Number(), row.Number(), row.Text(), row.Text(), row.Text()};
                });
}

std::int64_t Audit::AddEntry(SqlConnection& connection, const std::string& account, const std::string& action,
                             const std::string& subject)
{
    SqlRows added = connection.Query(
        "INSERT INTO audit (time, account, action, subject) VALUES ($1, $2, $3, $4) RETURNING id",
        {Now(), account, action, subject});
    // Ids ascend with time. Ten at once are enough, as usually none has expired.
    connection.Query(
        "DELETE FROM audit WHERE id IN (SELECT id FROM audit ORDER BY id LIMIT 10) AND time < $1",
        {Now() - Year});
    return added.at(0).Number();
}

}  // namespace kel::server
