#pragma once

#include <windows.h>

#include <objbase.h>

#include <chrono>
#include <future>
#include <thread>
#include <type_traits>
#include <utility>

namespace kel::check {

/// Runs a function on a thread of its own, so that the window never waits for it. The thread stays until the
/// process ends: its apartment holds the objects that the detectors keep.
/// @return its result, or its exception
template <typename Function>
std::future<std::invoke_result_t<Function>> StartWork(Function function)
{
    std::packaged_task<std::invoke_result_t<Function>()> task(std::move(function));
    auto result = task.get_future();
    std::thread([work = std::move(task)]() mutable {
        // Where this fails, the values whose sources are COM servers are empty.
        static_cast<void>(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
        work();
        Sleep(INFINITE);
    }).detach();
    return result;
}

template <typename Result>
bool IsReady(const std::future<Result>& result)
{
    return result.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

}  // namespace kel::check
