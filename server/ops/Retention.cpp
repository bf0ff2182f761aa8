#include "server/ops/Retention.h"

#include <algorithm>
#include <utility>

#include "server/base/Log.h"
#include "server/ops/Purge.h"
#include "server/store/Reports.h"

namespace kel::server {

namespace {

using std::chrono::milliseconds;

constexpr std::chrono::hours Interval{1};
constexpr std::chrono::hours MaxDoubt{7 * 24};
constexpr std::chrono::hours MaxDrift{1};

}  // namespace

Retention::Retention(Database& database, std::chrono::hours age)
    : database(database),
      age(age),
      doubt(std::min<milliseconds>(MaxDoubt, age / 2)),
      clock(std::chrono::system_clock::now()),
      steady(std::chrono::steady_clock::now()),
      trusted(steady + doubt),
      thread([this](const std::stop_token& stop) { Run(stop); })
{
}

void Retention::Run(const std::stop_token& stop)
{
    while (!stop.stop_requested()) {
        try {
            const int count =
                PurgeOlder(database, TrustedTime() - age.count(), [&] { return stop.stop_requested(); });
            Log(Level::Info, "purged", {{"reports", std::to_string(count)}});
        } catch (const std::exception& error) {
            Log(Level::Error, "not-purged", {{"reason", error.what()}});
        }
        std::unique_lock lock(turn);
        wake.wait_for(lock, stop, Interval, [] { return false; });
    }
}

/// The present time, or an earlier one. After a jump, the newest report from before the last days shows what
/// time it was: ages are counted from twice `doubt` after that report, so that the report itself is kept.
std::int64_t Retention::TrustedTime()
{
    const auto clockWas = std::exchange(clock, std::chrono::system_clock::now());
    const auto steadyWas = std::exchange(steady, std::chrono::steady_clock::now());
    const auto drift = (clock - clockWas) - (steady - steadyWas);
    if (drift > MaxDrift || drift < -MaxDrift)
        trusted = steady + doubt;
    const std::int64_t now = Now();
    const std::int64_t newest = Reports(database).NewestBefore(now - doubt.count());
    const std::int64_t latest = newest + 2 * doubt.count();
    if (newest == 0 || latest >= now || steady >= trusted)
        return now;
    Log(Level::Warning, "clock-doubted",
        {{"days", std::to_string(std::chrono::floor<std::chrono::days>(milliseconds(now - newest)).count())},
         {"reason", "no report was received for that long, or the clock has jumped"}});
    return latest;
}

}  // namespace kel::server
