#pragma once

#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <thread>

namespace kel::server {

/// Returns memory that the process no longer uses to the system, on a thread of its own until its end: after
/// a crowd has left, the allocator would keep most of what it took. Changes how the allocator works, so make
/// it before there are other threads.
class HeapTrimmer {
public:
    HeapTrimmer();

private:
    void Run(const std::stop_token& stop);

    std::mutex turn;
    std::condition_variable_any wake;
    std::jthread thread;  // the last: it ends before what it uses
};

}  // namespace kel::server
