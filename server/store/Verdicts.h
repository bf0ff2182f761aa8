#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "server/store/Database.h"
#include "verdict/Verdict.h"

namespace kel::server {

/// A verdict on a stored report by a published set.
struct NewVerdict {
    std::int64_t report = 0;
    std::int64_t set = 0;
    std::string item;
    Result total = Result::Unknown;
    std::string lines;    // JSON
    std::string results;  // of the lines (see ResultLetters)
};

/// The first letter of each line's result, by which reports are found.
std::string ResultLetters(const Verdict& verdict);

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

private:
    Database& database;
};

}  // namespace kel::server
