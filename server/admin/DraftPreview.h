#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "server/admin/LineChanges.h"
#include "server/admin/RequestedValues.h"
#include "server/admin/figures/Recent.h"
#include "server/admin/kit/Html.h"
#include "server/store/Database.h"
#include "verdict/Requirements.h"
#include "verdict/RequirementsCheck.h"
#include "verdict/Tally.h"

namespace kel::server {

/// What a draft would do to the newest reports of its product's last sessions.
struct DraftPreview {
    /// A machine with another result than today.
    struct ChangedMachine {
        std::int64_t report = 0;
        Result today, draft;
        std::string lines;  // the labels of the draft's lines that it does not meet, or of today's
    };
    static constexpr std::size_t MaxMachines = 20;

    std::string referrer;
    Requirements requirements, inForce;  // the latter are empty when nothing is published
    RecentSessions sessions;
    Tally draft, today;  // `today` is by the newest published version; empty when there is none
    std::vector<ChangedMachine> machines;  // the newest MaxMachines
    std::int64_t machineCount = 0;         // all of them
    RequestedValues values;

    /// Judges the newest reports of the referrer by the draft and by today's requirements.
    static DraftPreview Run(Database& database, const std::string& referrer, const Requirements& draft);

    /// The figures, as sentences and tables.
    Html Show() const;
    /// Only the values that the draft asks for.
    Html ShowValues() const { return values.Show(referrer, sessions); }
    /// Warnings for ids that today's requirements ask for and no machine reports.
    std::vector<Finding> FindUnreported(const std::string& text) const;

private:
    /// A number of sessions whose line has that result.
    Html LineCount(const Requirement& line, Result result, std::int64_t count) const;
    Html ShowShares() const;
    Html ShowChangedLines(const std::vector<LineChange>& changes) const;
    Html ShowMachines() const;
    Html ShowLines(const std::vector<LineChange>& changes) const;
};

}  // namespace kel::server
