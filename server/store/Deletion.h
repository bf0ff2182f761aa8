#pragma once

#include <functional>
#include <limits>
#include <string>

#include "server/store/Reports.h"

namespace kel::server {

/// The result of a deletion.
struct Deletion {
    static constexpr int MaxBatches = std::numeric_limits<int>::max();

    int reports = 0;         // deleted
    bool isComplete = true;  // false: it ended early, and reports are left

    /// Deletes in short batches with pauses, so that other writers get a turn, then removes the deleted data
    /// from the database's log. `deleteSome` deletes up to the given number of reports and returns how many;
    /// `ends` is called before each batch. Throws what they throw.
    static Deletion Run(Database& database, const std::function<int(int)>& deleteSome,
                        const std::function<bool()>& ends, int maxBatches = MaxBatches);

    /// Deletes a session's reports with their verdicts, and counts them in the audit's entry.
    static Deletion OfSession(Database& database, const std::string& session, DeletionEntry* entry,
                              int maxBatches = MaxBatches);
};

}  // namespace kel::server
