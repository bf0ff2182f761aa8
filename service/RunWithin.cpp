#include "service/RunWithin.h"

#include <windows.h>

#include <atomic>
#include <exception>
#include <memory>
#include <utility>

#include "platform/Handles.h"
#include "service/ExchangeLimits.h"

namespace kel {

namespace {

/// Shared by the waiting thread and the exchange's thread.
struct Job {
    std::function<void(InternetSession&)> exchange;
    InternetSession session;
    std::exception_ptr failure;
    OwnedHandle done{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
};

std::atomic<int> running = 0;

/// How long to wait for the end of a thread whose exchange is done, in milliseconds.
constexpr DWORD ThreadEnd = 200;

DWORD WINAPI Work(LPVOID context)
{
    const std::unique_ptr<std::shared_ptr<Job>> owner(static_cast<std::shared_ptr<Job>*>(context));
    Job& job = **owner;
    try {
        job.exchange(job.session);
    } catch (...) {
        job.failure = std::current_exception();
    }
    job.session.Close();
    --running;
    SetEvent(job.done.get());
    return 0;
}

OwnedHandle Start(const std::shared_ptr<Job>& job)
{
    auto context = std::make_unique<std::shared_ptr<Job>>(job);
    ++running;
    OwnedHandle thread(job->done ? CreateThread(nullptr, 0, &Work, context.get(), 0, nullptr) : nullptr);
    if (!thread) {
        --running;
        throw ExchangeNotStarted("Can't start an Internet exchange.");
    }
    static_cast<void>(context.release());  // the thread owns it from here on
    return thread;
}

}  // namespace

const char* RunWithin(std::chrono::milliseconds limit, std::function<void(InternetSession&)> exchange)
{
    if (running >= ExchangeLimits::AtOnce)
        throw ExchangeNotStarted("Too many Internet exchanges have not ended yet.");
    const auto job = std::make_shared<Job>();
    job->exchange = std::move(exchange);
    const OwnedHandle thread = Start(job);
    if (WaitForSingleObject(job->done.get(), static_cast<DWORD>(limit.count())) != WAIT_OBJECT_0) {
        job->session.Abandon();
        return job->session.Stage();
    }
    // Under Wine, a process that ends while one of its threads does can crash. The wait has a limit, since
    // the end of a thread takes the loader's lock, which the caller may hold.
    WaitForSingleObject(thread.get(), ThreadEnd);
    if (job->failure)
        std::rethrow_exception(job->failure);
    return nullptr;
}

}  // namespace kel
