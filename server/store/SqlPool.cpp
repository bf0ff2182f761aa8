#include "server/store/SqlPool.h"

#include <chrono>

#include "server/base/Fault.h"

namespace kel::server {

namespace {

constexpr int Unavailable = 503;
constexpr std::chrono::seconds Patience{10};

}  // namespace

SqlPool::Lease SqlPool::Borrow()
{
    std::unique_lock lock(turn);
    if (!returned.wait_for(lock, Patience, [&] { return lent < most; }))
        throw Fault(Unavailable, "database: no connection becomes free");
    ++lent;
    if (!free.empty()) {
        auto connection = std::move(free.back());
        free.pop_back();
        return {*this, std::move(connection)};
    }
    lock.unlock();  // opening takes a while
    try {
        return {*this, open()};
    } catch (...) {
        Return(nullptr);
        throw;
    }
}

void SqlPool::Return(std::unique_ptr<SqlConnection> connection)
{
    const std::lock_guard lock(turn);
    --lent;
    if (connection && !connection->IsBroken())
        free.push_back(std::move(connection));
    else
        free.clear();  // what broke one has broken those that rest, too
    returned.notify_one();
}

}  // namespace kel::server
