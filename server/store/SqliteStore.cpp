#include "server/store/SqliteStore.h"

#include <chrono>

#include "server/store/Migrations.h"

namespace kel::server {

namespace {

std::int64_t Now()
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

SqliteDatabase OpenCurrent(const std::string& path)
{
    SqliteDatabase database(path, SqliteDatabase::Mode::Existing);
    RequireCurrent(database);
    return database;
}

}  // namespace

SqliteStore::SqliteStore(const std::string& path)
    : database(OpenCurrent(path)),
      keepReport(database,
                 "INSERT INTO report (session, referrer, user, received, body) VALUES (?, ?, ?, ?, ?)"),
      newestReport(database, "SELECT id, body FROM report WHERE session = ? ORDER BY id DESC LIMIT 1"),
      newestSet(database,
                "SELECT requirement_set.id, version, text FROM requirement_set JOIN referrer ON referrer.id "
                "= referrer "
                "WHERE name = ? ORDER BY version DESC LIMIT 1"),
      addReferrer(database, "INSERT INTO referrer (name) VALUES (?) ON CONFLICT DO NOTHING"),
      addSet(database,
             "INSERT INTO requirement_set (referrer, version, published, text) "
             "SELECT id, ?, ?, ? FROM referrer WHERE name = ?"),
      keepVerdict(database,
                  "INSERT OR REPLACE INTO verdict (report, requirement_set, judged, item, total, lines) "
                  "VALUES (?, ?, ?, ?, ?, ?)")
{
}

void SqliteStore::Keep(const NewReport& report)
{
    const std::lock_guard lock(turn);
    keepReport.Bind(report.session, report.referrer, report.user, Now(), report.body).Run();
}

std::optional<StoredReport> SqliteStore::NewestReport(const std::string& session)
{
    const std::lock_guard lock(turn);
    if (!newestReport.Bind(session).Step())
        return std::nullopt;
    StoredReport report{newestReport.Number(0), newestReport.Text(1)};
    newestReport.Reset();
    return report;
}

std::optional<StoredSet> SqliteStore::NewestSet(const std::string& referrer)
{
    const std::lock_guard lock(turn);
    if (!newestSet.Bind(referrer).Step())
        return std::nullopt;
    StoredSet set{newestSet.Number(0), static_cast<int>(newestSet.Number(1)), newestSet.Text(2)};
    newestSet.Reset();
    return set;
}

int SqliteStore::Publish(const std::string& referrer, const std::string& text)
{
    const auto newest = NewestSet(referrer);
    if (newest && newest->text == text)
        return newest->version;
    const int version = newest ? newest->version + 1 : 1;
    const std::lock_guard lock(turn);
    SqliteTransaction transaction(database);
    addReferrer.Bind(referrer).Run();
    addSet.Bind(std::int64_t{version}, Now(), text, referrer)
        .Run();  // fails when another has published meanwhile
    transaction.Commit();
    return version;
}

void SqliteStore::Keep(const NewVerdict& verdict)
{
    const std::lock_guard lock(turn);
    keepVerdict.Bind(verdict.report, verdict.set, Now(), verdict.item, verdict.total, verdict.lines).Run();
}

}  // namespace kel::server
