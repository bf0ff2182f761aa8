#include "server/store/SqlPool.h"

#include "server/base/Fault.h"

namespace kel::server {

namespace {

constexpr int Unavailable = 503;
constexpr std::chrono::seconds Patience{10};
constexpr std::chrono::seconds Pause{1};

}  // namespace

SqlPool::Lease SqlPool::Borrow()
{
    std::vector<std::unique_ptr<SqlConnection>>
        broken;  // closed when the lock is given up: that takes a while
    std::unique_lock lock(turn);
    if (!returned.wait_for(lock, Patience, [&] { return lent < most; }))
        throw Fault(Unavailable, "database: no connection becomes free");
    while (!free.empty()) {
        auto connection = std::move(free.back());
        free.pop_back();
        if (!connection->IsBroken()) {
            ++lent;
            return {*this, std::move(connection)};
        }
        broken.push_back(std::move(connection));
    }
    // A database that does not answer costs one request now and then its patience, not every one.
    if (std::chrono::steady_clock::now() < retry)
        throw Fault(Unavailable, failure);
    ++lent;
    lock.unlock();  // so does opening
    try {
        return {*this, open()};
    } catch (const std::exception& error) {
        lock.lock();
        retry = std::chrono::steady_clock::now() + Pause;
        failure = error.what();
        lock.unlock();
        Return(nullptr);
        throw;
    }
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
    if (connection && connection->IsBroken()) {
        connection.reset();
        for (SqlPool* pool : joined)
            pool->Drop();
    }
    const std::lock_guard lock(turn);
    --lent;
    if (connection)
        free.push_back(std::move(connection));
    returned.notify_one();
}

}  // namespace kel::server
