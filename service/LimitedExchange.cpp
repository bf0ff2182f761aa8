#include "service/LimitedExchange.h"

#include <windows.h>

#include <atomic>
#include <exception>
#include <memory>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "diag/Owners.h"

namespace kel {

namespace {

/// How long an exchange may take to notice that its handles are closed.
constexpr DWORD GraceMilliseconds = 1000;
/// Bounds what exchanges that were left to themselves can add up to.
constexpr int MostExchanges = 4;

using OwnedThread = std::unique_ptr<std::remove_pointer_t<HANDLE>, Closer<&CloseHandle>>;

/// What the waiting thread and the exchange's thread share.
class Run {
public:
    explicit Run(std::function<void(InternetHandles&)> job) : exchange(std::move(job)) { ++count; }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    ~Run() { --count; }

    static bool AreTooMany() { return count >= MostExchanges; }

    std::function<void(InternetHandles&)> exchange;
    InternetHandles handles;
    std::exception_ptr failure;
    OwnedLibrary module;

private:
    inline static std::atomic<int> count = 0;
};

DWORD WINAPI Work(LPVOID context)
{
    HMODULE module = nullptr;
    {
        const std::unique_ptr<std::shared_ptr<Run>> owner(static_cast<std::shared_ptr<Run>*>(context));
        Run& run = **owner;
        try {
            run.exchange(run.handles);
        } catch (...) {
            run.failure = std::current_exception();
        }
        module = run.module.release();
    }
    // The code of this very function may be gone when a plain FreeLibrary returns.
    FreeLibraryAndExitThread(module, 0);
}

OwnedLibrary ThisModule()
{
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<LPCWSTR>(reinterpret_cast<void*>(&Work)), &module);
    return OwnedLibrary(module);
}

OwnedThread Start(const std::shared_ptr<Run>& run)
{
    run->module = ThisModule();
    auto context = std::make_unique<std::shared_ptr<Run>>(run);
    OwnedThread thread(run->module ? CreateThread(nullptr, 0, &Work, context.get(), 0, nullptr) : nullptr);
    if (!thread)
        throw std::runtime_error("Can't start an Internet exchange.");
    static_cast<void>(context.release());  // the thread's own from here on
    return thread;
}

}  // namespace

bool RunWithin(std::chrono::milliseconds limit, std::function<void(InternetHandles&)> exchange)
{
    if (Run::AreTooMany())
        throw std::runtime_error("Too many Internet exchanges have not ended yet.");
    const auto run = std::make_shared<Run>(std::move(exchange));
    const OwnedThread thread = Start(run);
    if (WaitForSingleObject(thread.get(), static_cast<DWORD>(limit.count())) != WAIT_OBJECT_0) {
        run->handles.CloseAll();
        WaitForSingleObject(thread.get(), GraceMilliseconds);
        return false;
    }
    if (run->failure)
        std::rethrow_exception(run->failure);
    return true;
}

}  // namespace kel
