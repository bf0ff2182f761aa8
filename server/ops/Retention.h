#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <thread>

#include "server/store/Store.h"

namespace kel::server {

/// Deletes reports that are older than an age, at once and then every hour, on a thread of its own until its
/// end. Several front ends of one database may do so at the same time. What fails is logged, and tried again.
class Retention {
public:
    Retention(Store& store, std::chrono::hours age);

private:
    void Run(const std::stop_token& stop);

    Store& store;
    std::chrono::hours age;
    std::mutex turn;
    std::condition_variable_any wake;
    std::jthread thread;  // the last: it ends before what it uses
};

}  // namespace kel::server
