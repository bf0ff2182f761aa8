#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "server/store/Records.h"

namespace kel::server {

/// Whether reports can be stored.
enum class StoreState { Ready, ReadOnly, NoRoom };

/// What the service keeps. Every operation may be called by any thread and is done entirely or not at all,
/// with its entry in the audit. Throws Fault 503 when the database fails, NoRoom when there is no room, and
/// 400 for a text that is no UTF-8 or has a NUL.
class Store {
public:
    virtual ~Store() = default;

    /// Asks the database, and writes nothing.
    virtual StoreState State() = 0;
    /// Whether reports are taken, as far as is known without asking the database. Never throws or waits.
    virtual bool HasRoom() const = 0;
    /// Bytes that are free for an SQLite file; -1 for a server.
    virtual std::int64_t FreeBytes() const = 0;

    // The control's requests.

    /// Appends a report; its id. NoRoom also past one of the bounds that are set.
    virtual std::int64_t Keep(const NewReport& report) = 0;
    /// The id of a session's newest report.
    virtual std::optional<std::int64_t> NewestReport(const std::string& session) = 0;
    /// The newest requirements of a referrer, without their text; nothing when it is not known.
    virtual std::optional<PublishedSet> NewestSet(const std::string& referrer) = 0;
    /// The text of published requirements, which never changes.
    virtual std::string SetText(std::int64_t set) = 0;
    /// Keeps a verdict; a later one of the same report and set replaces it. When the report has been deleted
    /// meanwhile, nothing happens. NoRoom where room for reports has been short for long.
    virtual void Keep(const NewVerdict& verdict) = 0;

    // Requirements and their drafts.

    /// All referrers with published requirements or a draft, by name.
    virtual std::vector<Product> Products() = 0;
    /// The versions of a referrer's requirements, the newest first.
    virtual std::vector<PublishedSet> Versions(const std::string& referrer) = 0;
    /// Publishes requirements as a referrer's newest version, unless they are the newest already; the
    /// version. The audit names the account, or the author.
    virtual int Publish(const std::string& referrer, const std::string& text, const std::string& author,
                        const std::string& account) = 0;
    int Publish(const std::string& referrer, const std::string& text, const std::string& author)
    {
        return Publish(referrer, text, author, author);
    }
    virtual std::optional<Draft> FindDraft(const std::string& referrer) = 0;
    /// Writes a draft over the one of that revision (0: there is none yet). The new revision; nothing, and
    /// nothing is written, when the draft has another revision by now. An empty text is no draft.
    virtual std::optional<int> KeepDraft(const std::string& referrer, const std::string& text, int revision,
                                         const std::string& author) = 0;
    /// Publishes the draft of that revision, and drops it; the version. Nothing when it has another one by
    /// now.
    virtual std::optional<int> PublishDraft(const std::string& referrer, int revision,
                                            const std::string& author) = 0;
    /// False when the draft has another revision by now.
    virtual bool DropDraft(const std::string& referrer, int revision, const std::string& account) = 0;

    // Reports and verdicts, for whoever looks at them.

    /// Reports that the filter lets pass, without their bodies, the newest first, or after `afterId` the
    /// oldest first.
    virtual std::vector<ReportLine> Reports(const ReportFilter& filter) = 0;
    virtual std::optional<FullReport> FindReport(std::int64_t report) = 0;
    /// The verdicts on a report, the newest requirements first.
    virtual std::vector<StoredVerdict> VerdictsOf(std::int64_t report) = 0;
    /// Passes the reports of these ids that still exist to `use`, in the order of the ids, which ascend or
    /// descend, until it returns false. Few statements: each reads many reports, as far as they have 4 MB.
    virtual void ForEachReport(const std::vector<std::int64_t>& ids,
                               const std::function<bool(const FullReport&)>& use) = 0;
    /// Passes the newest verdicts by a referrer's requirements of any version, `count` at most, to `use`, the
    /// newest report and the newest requirements first, in the same way.
    virtual void ForEachRecentVerdict(const std::string& referrer, int count,
                                      const std::function<bool(const StoredVerdict&)>& use) = 0;
    /// For each of the referrers: how many sessions have which total in their newest verdict, among the
    /// `count` newest verdicts by the referrer's requirements.
    virtual std::vector<Totals> RecentTotals(const std::vector<std::string>& referrers, int count) = 0;
    /// The newest reports of a referrer, the newest first.
    virtual std::vector<FullReport> RecentReports(const std::string& referrer, int count) = 0;

    // What is kept no longer. Each deletes at most `most` reports with their verdicts, and returns how many.
    // A deletion that takes several calls passes the same entry to each. None: the audit does not mention it.

    virtual int DeleteOlder(std::int64_t time, int most, DeletionEntry* entry) = 0;
    virtual int DeleteSession(const std::string& session, int most, DeletionEntry* entry) = 0;
    virtual int DeleteMachine(const std::string& machine, int most, DeletionEntry* entry) = 0;
    /// When the newest report that came before that time was received; 0 when none did.
    virtual std::int64_t NewestBefore(std::int64_t time) = 0;
    /// Once all is deleted: takes it out of the database's log, too, if nobody reads by that.
    virtual void EndDeletion() = 0;

    // Accounts.

    /// Makes an account, or gives the one of that name another hash and role, which ends its log-ins. `by`
    /// is for the audit.
    virtual void Keep(const Account& account, const std::string& by) = 0;
    virtual std::optional<Account> FindAccount(const std::string& name) = 0;
    virtual std::vector<Account> Accounts() = 0;
    /// False when there is no such account.
    virtual bool RemoveAccount(const std::string& name, const std::string& by) = 0;
    /// Keeps a log-in, and forgets those that have ended by now. False, and nothing is kept, when the account
    /// has gone or has another hash by now.
    virtual bool Keep(const Login& login) = 0;
    /// The log-in with that key, if it has not ended and its account still exists.
    virtual std::optional<Login> FindLogin(const std::string& key) = 0;
    virtual void EndLogin(const std::string& key) = 0;
    /// Adds an entry to the audit, and forgets those that are older than a year.
    virtual void Note(const std::string& account, const std::string& action, const std::string& subject) = 0;
    /// What was noted before the entry of that id (0: the newest), the newest first.
    virtual std::vector<AuditLine> Notes(std::int64_t beforeId, int count) = 0;
};

/// Milliseconds since 1970, UTC: the unit of all times that are kept.
std::int64_t Now();

}  // namespace kel::server
