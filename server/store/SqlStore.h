#pragma once

#include <memory>
#include <string>
#include <utility>

#include "server/base/Fault.h"
#include "server/store/Room.h"
#include "server/store/SqlPool.h"
#include "server/store/Store.h"

namespace kel::server {

/// The store in an SQL database. All statements are written so that each of the databases takes them.
class SqlStore : public Store {
public:
    /// Operations that only read borrow from `readers`, all others from `writers`. The state and the
    /// published requirements have connections of their own, `quick`, so that they never wait for either. Two
    /// or all three may be one pool. `file` is that of SQLite.
    SqlStore(std::shared_ptr<SqlPool> quick, std::shared_ptr<SqlPool> readers,
             std::shared_ptr<SqlPool> writers, const std::string& file, const Bounds& bounds);

    StoreState State() override;
    bool HasRoom() const override { return room.TakesReports(); }
    std::int64_t FreeBytes() const override { return room.Free(); }
    std::int64_t Keep(const NewReport& report) override;
    std::optional<std::int64_t> NewestReport(const std::string& session) override;
    std::optional<PublishedSet> NewestSet(const std::string& referrer) override;
    std::string SetText(std::int64_t set) override;
    void Keep(const NewVerdict& verdict) override;

    std::vector<Product> Products() override;
    std::vector<PublishedSet> Versions(const std::string& referrer) override;
    int Publish(const std::string& referrer, const std::string& text, const std::string& author,
                const std::string& account) override;
    std::optional<Draft> FindDraft(const std::string& referrer) override;
    std::optional<int> KeepDraft(const std::string& referrer, const std::string& text, int revision,
                                 const std::string& author) override;
    std::optional<int> PublishDraft(const std::string& referrer, int revision,
                                    const std::string& author) override;
    bool DropDraft(const std::string& referrer, int revision, const std::string& account) override;

    std::vector<ReportLine> Reports(const ReportFilter& filter) override;
    std::optional<FullReport> FindReport(std::int64_t report) override;
    std::vector<StoredVerdict> VerdictsOf(std::int64_t report) override;
    void ForEachReport(const std::vector<std::int64_t>& ids,
                       const std::function<bool(const FullReport&)>& use) override;
    void ForEachRecentVerdict(const std::string& referrer, int count,
                              const std::function<bool(const StoredVerdict&)>& use) override;
    std::vector<Totals> RecentTotals(const std::vector<std::string>& referrers, int count) override;
    std::vector<FullReport> RecentReports(const std::string& referrer, int count) override;

    int DeleteOlder(std::int64_t time, int most, DeletionEntry* entry) override;
    int DeleteSession(const std::string& session, int most, DeletionEntry* entry) override;
    int DeleteMachine(const std::string& machine, int most, DeletionEntry* entry) override;
    std::int64_t NewestBefore(std::int64_t time) override;
    void EndDeletion() override;

    void Keep(const Account& account, const std::string& by) override;
    std::optional<Account> FindAccount(const std::string& name) override;
    std::vector<Account> Accounts() override;
    bool RemoveAccount(const std::string& name, const std::string& by) override;
    bool Keep(const Login& login) override;
    std::optional<Login> FindLogin(const std::string& key) override;
    void EndLogin(const std::string& key) override;
    void Note(const std::string& account, const std::string& action, const std::string& subject) override;
    std::vector<AuditLine> Notes(std::int64_t beforeId, int count) override;

private:
    SqlRows Read(const std::string& sql, const std::vector<SqlValue>& values = {});
    /// Does what an operator needs to have done: where the disk is full, once more in the reserve's room.
    template <typename Work>
    auto WithReserve(Work work) -> decltype(work());
    /// Does so in one transaction. The work returns what is false when nothing is to be changed.
    template <typename Work>
    auto Change(Work work) -> decltype(work(std::declval<SqlConnection&>()));
    static std::pair<std::int64_t, std::int64_t> Span(SqlConnection& connection, const ReportFilter& filter);
    static std::int64_t IdOf(SqlConnection& connection, const std::string& referrer);
    int Delete(const std::string& condition, SqlValue value, int most, DeletionEntry* entry);

    std::shared_ptr<SqlPool> quick, readers, writers;
    Room room;
    const std::int64_t sessionReports;
};

template <typename Work>
auto SqlStore::WithReserve(Work work) -> decltype(work())
{
    try {
        return work();
    } catch (const NoRoom&) {
        if (!room.ReleaseReserve())
            throw;
    }
    return work();
}

template <typename Work>
auto SqlStore::Change(Work work) -> decltype(work(std::declval<SqlConnection&>()))
{
    const auto connection = writers->Borrow();
    return WithReserve([&] {
        SqlTransaction transaction(*connection);
        auto result = work(*connection);
        if (result)
            transaction.Commit();
        return result;
    });
}

/// Adds an entry to the audit, inside of a transaction; its id.
std::int64_t AddAuditEntry(SqlConnection& connection, const std::string& account, const std::string& action,
                           const std::string& subject);

}  // namespace kel::server
