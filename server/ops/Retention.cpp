#include "server/ops/Retention.h"

#include "server/base/Log.h"
#include "server/ops/Purge.h"

namespace kel::server {

namespace {

constexpr std::chrono::hours Interval{1};

}  // namespace

Retention::Retention(Store& store, std::chrono::hours age)
    : store(store), age(age), thread([this](const std::stop_token& stop) { Run(stop); })
{
}

void Retention::Run(const std::stop_token& stop)
{
    while (!stop.stop_requested()) {
        try {
            const int count = PurgeOlder(store, age, [&] { return stop.stop_requested(); });
            Log(Level::Info, "purged", {{"reports", std::to_string(count)}});
        } catch (const std::exception& error) {
            Log(Level::Error, "not-purged", {{"reason", error.what()}});
        }
        std::unique_lock lock(turn);
        wake.wait_for(lock, stop, Interval, [] { return false; });
    }
}

}  // namespace kel::server
