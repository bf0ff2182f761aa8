#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "server/store/Database.h"
#include "verdict/Tally.h"

namespace kel::server {

/// A verdict on a stored report by a published set.
struct NewVerdict {
    std::int64_t report = 0;
    std::int64_t set = 0;
    std::string item;
    Result total = Result::Unknown;
    std::string lines;  // JSON
};

struct StoredVerdict {
    std::int64_t report = 0;
    std::string session;  // of the report
    std::string referrer;
    std::int64_t set = 0;
    int version = 0;
    std::int64_t judged = 0;
    Result total = Result::Unknown;
    std::string lines;  // JSON
};

/// The stored verdicts.
class Verdicts {
public:
    explicit Verdicts(Database& database) : database(database) {}

    /// Saves a verdict; a later one on the same report by the same set replaces it. When the report has been
    /// deleted meanwhile, nothing happens. Throws NoRoom when less than half of the room that reports need is
    /// free.
    void Save(const NewVerdict& verdict);
    /// The verdicts on a report, the newest requirements first.
    std::vector<StoredVerdict> OnReport(std::int64_t report);
    /// Passes the newest verdicts by any version of a referrer's requirements, at most `count`, to `use`, the
    /// newest report and the newest requirements first, until it returns false. Each statement reads many
    /// verdicts, at most 4 MB.
    void ForEachRecent(const std::string& referrer, int count,
                       const std::function<bool(const StoredVerdict&)>& use);
    /// For each of the referrers, counts the sessions by the total of their newest verdict, among the `count`
    /// newest verdicts by the referrer's requirements.
    std::vector<Counts> CountRecent(const std::vector<std::string>& referrers, int count);

private:
    Database& database;
};

}  // namespace kel::server
