#include "server/store/Deletion.h"

#include <chrono>
#include <thread>

namespace kel::server {

namespace {

constexpr int BatchReports = 200;
constexpr std::chrono::milliseconds Pause{20};

}  // namespace

Deletion Deletion::Run(Database& database, const std::function<int(int)>& deleteSome,
                       const std::function<bool()>& ends, int maxBatches)
{
    Deletion deletion;
    int count = BatchReports;
    for (int batch = 0; count > 0 && batch < maxBatches && !ends(); ++batch) {
        count = deleteSome(BatchReports);
        deletion.reports += count;
        std::this_thread::sleep_for(Pause);
    }
    deletion.isComplete = count == 0;
    if (deletion.reports > 0)
        database.TruncateWriteAheadLog();
    return deletion;
}

Deletion Deletion::OfSession(Database& database, const std::string& session, DeletionEntry* entry,
                             int maxBatches)
{
    return Run(
        database, [&](int maxCount) { return Reports(database).DeleteSession(session, maxCount, entry); },
        [] { return false; }, maxBatches);
}

}  // namespace kel::server
