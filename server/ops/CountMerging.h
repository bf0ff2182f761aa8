#pragma once

#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <thread>

#include "server/store/Database.h"

namespace kel::server {

/// Merges the parts of the counts of past days in a PostgreSQL database, at once and then every hour, on its
/// own thread while it exists. Several front ends of one database may do so at the same time. Failures are
/// logged, and tried again.
class CountMerging {
public:
    explicit CountMerging(Database& database);

private:
    void Run(const std::stop_token& stop);

    Database& database;
    std::mutex turn;
    std::condition_variable_any wake;
    std::jthread thread;  // the last member: it ends before those that it uses
};

}  // namespace kel::server
