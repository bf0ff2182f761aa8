#include "server/store/SqlPool.h"

#include "server/base/Fault.h"

namespace kel::server {

namespace {

using std::chrono::steady_clock;

constexpr std::chrono::seconds Patience{10};
constexpr std::chrono::seconds RetryPause{1};

}  // namespace

SqlPool::Lease SqlPool::Borrow()
{
    // Destroyed after the lock is released, since closing takes a while.
    std::vector<std::unique_ptr<SqlConnection>> broken;
    const auto end = steady_clock::now() + Patience;
    std::unique_lock lock(turn);
    for (;;) {
        if (auto connection = TakeFree(broken)) {
            ++lent;
            return {*this, std::move(connection)};
        }
        if (lent < maxCount && steady_clock::now() >= retry) {
            if (auto connection = TryOpen(lock))
                return {*this, std::move(connection)};
            continue;
        }
        // While the database does not answer, only one request now and then waits for it, not every one.
        if (lent == 0)
            throw Fault(Unavailable, failure);
        // While connections are lent, wait for one of them, and try to open another from time to time.
        const auto now = steady_clock::now();
        if (now >= end)
            throw Fault(Unavailable, lent < maxCount ? failure : "database: no connection becomes free");
        returned.wait_until(lock, lent < maxCount ? std::min(end, retry) : end);
    }
}

/// The lock is held before and after.
std::unique_ptr<SqlConnection> SqlPool::TakeFree(std::vector<std::unique_ptr<SqlConnection>>& broken)
{
    while (!free.empty()) {
        auto connection = std::move(free.back());
        free.pop_back();
        if (!connection->IsBroken())
            return connection;
        broken.push_back(std::move(connection));
    }
    return nullptr;
}

/// Counts a connection as lent, and opens it with the lock released. Null when it cannot be opened.
std::unique_ptr<SqlConnection> SqlPool::TryOpen(std::unique_lock<std::mutex>& lock)
{
    ++lent;
    lock.unlock();
    std::unique_ptr<SqlConnection> connection;
    std::string reason;
    try {
        connection = open();
    } catch (const std::exception& error) {
        reason = error.what();
    }
    lock.lock();
    if (!connection) {
        retry = steady_clock::now() + RetryPause;
        failure = std::move(reason);
        --lent;
        returned.notify_all();
    }
    return connection;
}

void SqlPool::Join(const std::vector<std::shared_ptr<SqlPool>>& pools)
{
    for (const auto& pool : pools) {
        pool->joined.clear();
        for (const auto& other : pools)
            pool->joined.push_back(other.get());
    }
}

void SqlPool::Drop()
{
    std::vector<std::unique_ptr<SqlConnection>> dropped;
    const std::lock_guard lock(turn);
    dropped.swap(free);
}

void SqlPool::Return(std::unique_ptr<SqlConnection> connection)
{
    if (connection->IsBroken()) {
        connection.reset();
        for (SqlPool* pool : joined)
            pool->Drop();
    }
    const std::lock_guard lock(turn);
    --lent;
    if (!connection) {
        returned.notify_all();  // to open another, or to give up
        return;
    }
    free.push_back(std::move(connection));
    returned.notify_one();
}

}  // namespace kel::server
