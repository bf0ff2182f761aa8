#include "service/LimitedExchange.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <stdexcept>
#include <thread>

namespace kel {
namespace {

using namespace std::chrono_literals;

/// Stays blocked until it is told to end, like a call that closing its handle does not end.
struct Blocked {
    std::atomic<bool> mayEnd = false;
    std::atomic<int> running = 0;
    std::atomic<int> closed = 0;

    bool Run(const std::shared_ptr<Blocked>& self)
    {
        return RunWithin(20ms, [self](InternetHandles& handles) {
            ++self->running;
            while (!self->mayEnd)
                std::this_thread::sleep_for(1ms);
            self->closed += handles.AreClosed() ? 1 : 0;
            EXPECT_EQ(handles.Keep(InternetOpenW(L"", 0, nullptr, nullptr, 0)), nullptr);
            --self->running;
        });
    }
};

TEST(LimitedExchange, EndsWithItsExchange)
{
    HINTERNET session = nullptr;
    EXPECT_TRUE(RunWithin(5s, [&session](InternetHandles& handles) {
        session = handles.Keep(InternetOpenW(L"", 0, nullptr, nullptr, 0));
        EXPECT_FALSE(handles.AreClosed());
    }));
    EXPECT_NE(session, nullptr);
    EXPECT_FALSE(InternetCloseHandle(session));  // closed already
    EXPECT_THROW(RunWithin(5s, [](InternetHandles&) { throw std::length_error("x"); }), std::length_error);
}

TEST(LimitedExchange, LeavesBlockedExchangesToThemselvesAndBoundsTheirNumber)
{
    auto blocked = std::make_shared<Blocked>();
    const std::weak_ptr<Blocked> watched = blocked;
    std::atomic<int> late = 0;
    {
        std::vector<std::jthread> callers;
        for (int caller = 0; caller < 4; ++caller)
            callers.emplace_back([&] { late += blocked->Run(blocked) ? 0 : 1; });
    }
    EXPECT_EQ(late, 4);
    EXPECT_EQ(blocked->running, 4);
    EXPECT_THROW(blocked->Run(blocked), std::runtime_error);
    blocked->mayEnd = true;
    while (blocked->running > 0)
        std::this_thread::sleep_for(1ms);
    EXPECT_EQ(blocked->closed, 4);
    blocked.reset();
    for (int milliseconds = 0; milliseconds < 5000 && !watched.expired(); ++milliseconds)
        std::this_thread::sleep_for(1ms);
    EXPECT_TRUE(watched.expired());
    EXPECT_TRUE(RunWithin(5s, [](InternetHandles&) {}));
}

}  // namespace
}  // namespace kel
