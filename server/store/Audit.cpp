#include "server/store/Audit.h"

#include "server/store/Conditions.h"
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

std::vector<AuditEntry> Audit::Entries(const AuditFilter& filter)
{
    Conditions conditions;
    if (filter.beforeId > 0)
        conditions.Add("id < ?", filter.beforeId);
    if (!filter.account.empty())
        conditions.Add("account = ?", filter.account);
    if (!filter.text.empty())  // both databases have these functions
        conditions.Add("replace(action || ' ' || subject, ?, '') <> action || ' ' || subject", filter.text);
    if (filter.from > 0)
        conditions.Add("time >= ?", filter.from);
    if (filter.until > 0)
        conditions.Add("time < ?", filter.until);
    conditions.values.emplace_back(std::int64_t{filter.count});
    return Each(database.Read("SELECT id, time, account, action, subject FROM audit" + conditions.text +
                                  " ORDER BY id DESC LIMIT " + conditions.Parameter(),
                              conditions.values),
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
