#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <thread>

#include "server/store/Database.h"

namespace kel::server {

/// Deletes reports that are older than an age, at once and then every hour, on a thread of its own until its
/// end. Several front ends of one database may do so at the same time. What fails is logged, and tried again.
/// A clock that is wrong does not delete everything: where it seems to have jumped, ages are counted from the
/// reports that came before, until a week has passed.
class Retention {
public:
    Retention(Database& database, std::chrono::hours age);

private:
    void Run(const std::stop_token& stop);
    std::int64_t TrustedTime();

    Database& database;
    const std::chrono::milliseconds age;
    const std::chrono::milliseconds doubt;  // how long a clock has to go on for what it says to be believed
    std::chrono::system_clock::time_point clock;   // at the last look
    std::chrono::steady_clock::time_point steady;  // then
    std::chrono::steady_clock::time_point
        trusted;  // when the clock will have gone on without a jump for so long
    std::mutex turn;
    std::condition_variable_any wake;
    std::jthread thread;  // the last: it ends before what it uses
};

}  // namespace kel::server
