#include "service/LimitedExchange.h"

#include <windows.h>

#include <atomic>
#include <exception>
#include <memory>
#include <stdexcept>
#include <utility>

#include "platform/Handles.h"
#include "platform/Library.h"

namespace kel {

namespace {

/// How long an exchange may take to notice that its handles are closed.
constexpr DWORD GraceMilliseconds = 1000;
/// Bounds what exchanges that were left to themselves can add up to.
constexpr int MostExchanges = 4;

/// What the waiting thread and the exchange's thread share.
class SharedExchange {
public:
    explicit SharedExchange(std::function<void(InternetHandles&)> job) : exchange(std::move(job)) { ++count; }
    SharedExchange(const SharedExchange&) = delete;
    SharedExchange& operator=(const SharedExchange&) = delete;
    ~SharedExchange() { --count; }

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
        const std::unique_ptr<std::shared_ptr<SharedExchange>> owner(
            static_cast<std::shared_ptr<SharedExchange>*>(context));
        SharedExchange& shared = **owner;
        try {
            shared.exchange(shared.handles);
        } catch (...) {
            shared.failure = std::current_exception();
        }
        module = shared.module.release();
    }
    // The code of this very function may be gone when a plain FreeLibrary returns.
    FreeLibraryAndExitThread(module, 0);
}

OwnedLibrary HeldModule()
{
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<LPCWSTR>(reinterpret_cast<void*>(&Work)), &module);
    return OwnedLibrary(module);
}

OwnedHandle Start(const std::shared_ptr<SharedExchange>& shared)
{
    shared->module = HeldModule();
    auto context = std::make_unique<std::shared_ptr<SharedExchange>>(shared);
    OwnedHandle thread(shared->module ? CreateThread(nullptr, 0, &Work, context.get(), 0, nullptr) : nullptr);
    if (!thread)
        throw std::runtime_error("Can't start an Internet exchange.");
    static_cast<void>(context.release());  // the thread's own from here on
    return thread;
}

}  // namespace

bool RunWithin(std::chrono::milliseconds limit, std::function<void(InternetHandles&)> exchange)
{
    if (SharedExchange::AreTooMany())
        throw std::runtime_error("Too many Internet exchanges have not ended yet.");
    const auto shared = std::make_shared<SharedExchange>(std::move(exchange));
    const OwnedHandle thread = Start(shared);
    if (WaitForSingleObject(thread.get(), static_cast<DWORD>(limit.count())) != WAIT_OBJECT_0) {
        shared->handles.CloseAll();
        WaitForSingleObject(thread.get(), GraceMilliseconds);
        return false;
    }
    if (shared->failure)
        std::rethrow_exception(shared->failure);
    return true;
}

}  // namespace kel
