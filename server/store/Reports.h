#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "server/store/Database.h"
#include "verdict/Result.h"

namespace kel::server {

/// A report as it arrived.
struct NewReport {
    std::string session;
    std::string referrer;  // empty when the report names none, or one that cannot exist
    std::string user;
    std::string machine;  // the machine's identifier; empty when the report has none
    std::string body;
};

/// A report with everything that is stored about it.
struct FullReport {
    std::int64_t id = 0;
    std::string session, referrer, user, machine;
    std::int64_t received = 0;
    std::string body;
};

/// Which report it is, and of which product.
struct ReportId {
    std::int64_t id = 0;
    std::string referrer;
};

/// A report in a list.
struct ReportLine {
    std::int64_t id = 0;
    std::string session, referrer;
    std::int64_t received = 0;
    std::optional<Result> total;  // of its verdict by the newest requirements that judged it
};

/// A line of a version of requirements.
struct LineOfSet {
    std::int64_t set = 0;
    int line = 0;  // from 1 on
};

/// Which reports to list; a member that is empty or 0 does not restrict them. With a referrer, the verdict
/// that the other members restrict has to be by that referrer's requirements.
struct ReportFilter {
    static constexpr std::size_t MaxLines = 8, MaxBeginnings = 4;

    std::string referrer = {}, session = {}, user = {}, machine = {};
    std::vector<std::string> beginnings = {};  // of the session, one of them
    std::optional<Result> total = {};  // of the verdict by the newest requirements, or by those of `version`
    int version = 0;                   // of the referrer's requirements
    int line = 0;                      // of the verdict, from 1 on, which has `lineResult`
    std::optional<Result> lineResult = {};
    std::optional<std::vector<LineOfSet>> failing = {};  // one of these fails; at most MaxLines
    bool isOnce = false;                   // only the verdict that counts for its session (see DayCounts)
    std::int64_t from = 0, until = 0;      // received from this time on, and before that
    std::int64_t beforeId = 0;             // the page after the report with that id
    std::int64_t afterId = -1;             // from 0 on: reports with a greater id, the oldest first
    std::int64_t fromId = 0, untilId = 0;  // only reports with these ids and those between
    int count = 50;
};

/// The audit's only entry for a deletion that may take several calls. Its subject ends with the count so far.
struct DeletionEntry {
    std::string account, action, subject;
    std::int64_t id = 0;  // once it is written
    int reports = 0;
};

/// The stored reports. Every operation is a transaction.
class Reports {
public:
    explicit Reports(Database& database) : database(database) {}

    /// Adds a report, and returns its id. Also throws NoRoom when one of the configured bounds is exceeded.
    std::int64_t Add(const NewReport& report);
    /// A session's newest report.
    std::optional<ReportId> NewestOf(const std::string& session);
    /// The number of a session's reports, counted up to `max`.
    int CountOfSession(const std::string& session, int max);
    std::optional<FullReport> Find(std::int64_t report);
    /// The reports that match the filter, without their bodies: the newest first, or after `afterId` the
    /// oldest first.
    std::vector<ReportLine> List(const ReportFilter& filter);
    /// The id of the verdict's report that is that far in the list if only its referrer and the bounds of its
    /// ids count, so that a statement can look at a part of the list; 0 when the list is not that long.
    std::int64_t StretchEnd(const ReportFilter& filter, int verdicts);
    /// Passes the reports of these ids that still exist to `use`, in the order of the ids, which ascend or
    /// descend, until it returns false. Each statement reads many reports, at most 4 MB.
    void ForEach(const std::vector<std::int64_t>& ids, const std::function<bool(const FullReport&)>& use);
    /// The time of receipt of the newest report before that time; 0 when there is none.
    std::int64_t NewestBefore(std::int64_t time);

    // Each deletes at most `maxCount` reports with their verdicts, and returns how many. A deletion that
    // takes several calls passes the same audit entry to each; without one, the audit does not mention the
    // deletion.

    int DeleteOlder(std::int64_t time, int maxCount, DeletionEntry* entry);
    int DeleteSession(const std::string& session, int maxCount, DeletionEntry* entry);
    int DeleteMachine(const std::string& machine, int maxCount, DeletionEntry* entry);

private:
    int Delete(const std::string& condition, SqlValue value, int maxCount, DeletionEntry* entry);

    Database& database;
};

}  // namespace kel::server
