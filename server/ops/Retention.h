#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <thread>

#include "server/store/Database.h"

namespace kel::server {

/// Deletes reports that are older than an age, at once and then every hour, on its own thread while it
/// exists. Several front ends of one database may do so at the same time. Failures are logged, and tried
/// again. A wrong clock does not cause everything to be deleted: when it seems to have jumped, ages are
/// counted from the reports before the jump, until a week has passed.
class Retention {
public:
    Retention(Database& database, std::chrono::hours age);

private:
    void Run(const std::stop_token& stop);
    std::int64_t TrustedTime();

    Database& database;
    const std::chrono::milliseconds age;
    const std::chrono::milliseconds doubt;         // how long a clock has to run without a jump to be trusted
    std::chrono::system_clock::time_point clock;   // at the last check
    std::chrono::steady_clock::time_point steady;  // then
    std::chrono::steady_clock::time_point trusted;  // when the clock will have run that long without a jump
    std::mutex turn;
    std::condition_variable_any wake;
    std::jthread thread;  // the last member: it ends before those that it uses
};

}  // namespace kel::server
