#pragma once

#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <thread>

namespace kel::server {

/// Returns memory that the process no longer uses to the system, on its own thread, while the object exists:
/// after a crowd has left, the allocator would otherwise keep most of the memory. Changes the allocator's
/// settings, so create it before there are other threads.
class HeapTrimmer {
public:
    HeapTrimmer();

private:
    void Run(const std::stop_token& stop);

    std::mutex turn;
    std::condition_variable_any wake;
    std::jthread thread;  // the last member: it ends before those that it uses
};

}  // namespace kel::server
