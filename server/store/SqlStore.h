#pragma once

#include <memory>
#include <string>
#include <utility>

#include "server/store/SqlPool.h"
#include "server/store/Store.h"

namespace kel::server {

/// The store in an SQL database. All statements are written so that each of the databases takes them.
class SqlStore : public Store {
public:
    /// What only reads borrows from `readers`, everything else from `writers`; both may be one.
    SqlStore(std::shared_ptr<SqlPool> readers, std::shared_ptr<SqlPool> writers);

    void Ping() override;
    void Keep(const NewReport& report) override;
    std::optional<StoredReport> NewestReport(const std::string& session) override;
    std::optional<PublishedSet> NewestSet(const std::string& referrer) override;
    std::string SetText(std::int64_t set) override;
    void Keep(const NewVerdict& verdict) override;

    std::vector<Product> Products() override;
    std::vector<PublishedSet> Versions(const std::string& referrer) override;
    int Publish(const std::string& referrer, const std::string& text, const std::string& author) override;
    std::optional<Draft> FindDraft(const std::string& referrer) override;
    std::optional<int> KeepDraft(const std::string& referrer, const std::string& text, int revision,
                                 const std::string& author) override;
    std::optional<int> PublishDraft(const std::string& referrer, int revision,
                                    const std::string& author) override;
    bool DropDraft(const std::string& referrer, int revision) override;

    std::vector<ReportLine> Reports(const ReportFilter& filter) override;
    std::optional<FullReport> FindReport(std::int64_t report) override;
    std::vector<StoredVerdict> VerdictsOf(std::int64_t report) override;
    void ForEachReport(const std::vector<std::int64_t>& ids,
                       const std::function<bool(const FullReport&)>& use) override;
    void ForEachRecentVerdict(const std::string& referrer, int count,
                              const std::function<bool(const StoredVerdict&)>& use) override;
    std::vector<Totals> RecentTotals(const std::vector<std::string>& referrers, int count) override;
    std::vector<FullReport> RecentReports(const std::string& referrer, int count) override;

    int DeleteOlder(std::int64_t time, int most) override;
    int DeleteSession(const std::string& session, int most) override;
    int DeleteMachine(const std::string& machine, int most) override;
    void EndDeletion() override { writers->Borrow()->EmptyLog(); }

    void Keep(const Account& account) override;
    std::optional<Account> FindAccount(const std::string& name) override;
    std::vector<Account> Accounts() override;
    bool RemoveAccount(const std::string& name) override;
    bool Keep(const Login& login) override;
    std::optional<Login> FindLogin(const std::string& key) override;
    void EndLogin(const std::string& key) override;
    void Note(const std::string& account, const std::string& action, const std::string& subject) override;
    std::vector<AuditLine> Notes(std::int64_t beforeId, int count) override;

private:
    SqlRows Read(const std::string& sql, const std::vector<SqlValue>& values = {});
    SqlRows Write(const std::string& sql, const std::vector<SqlValue>& values);
    static std::pair<std::int64_t, std::int64_t> Span(SqlConnection& connection, const ReportFilter& filter);
    static std::int64_t IdOf(SqlConnection& connection, const std::string& referrer);
    int Delete(const std::string& condition, SqlValue value, int most);

    std::shared_ptr<SqlPool> readers, writers;
};

}  // namespace kel::server
