#include "server/ops/CountMerging.h"

#include <chrono>

#include "server/base/Log.h"
#include "server/store/DayCounts.h"

namespace kel::server {

namespace {

constexpr std::chrono::hours MergeInterval{1};

}  // namespace

CountMerging::CountMerging(Database& database)
    : database(database), thread([this](const std::stop_token& stop) { Run(stop); })
{
}

void CountMerging::Run(const std::stop_token& stop)
{
    while (!stop.stop_requested()) {
        try {
            DayCounts(database).MergeParts(Now() / DayLength, [&] { return stop.stop_requested(); });
        } catch (const std::exception& error) {
            Log(Level::Error, "not-merged", {{"reason", error.what()}});
        }
        std::unique_lock lock(turn);
        wake.wait_for(lock, stop, MergeInterval, [] { return false; });
    }
}

}  // namespace kel::server
