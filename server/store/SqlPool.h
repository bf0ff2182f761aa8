#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "server/store/SqlConnection.h"

namespace kel::server {

/// Connections to a database, opened on demand and lent to one thread at a time. Broken ones are replaced.
class SqlPool {
public:
    using Open = std::function<std::unique_ptr<SqlConnection>()>;

    /// A connection that is returned when the lease ends.
    class Lease {
    public:
        Lease(SqlPool& pool, std::unique_ptr<SqlConnection> connection)
            : pool(pool), connection(std::move(connection))
        {
        }
        ~Lease()
        {
            if (connection)
                pool.Return(std::move(connection));
        }
        Lease(Lease&&) = default;
        Lease& operator=(Lease&&) = delete;

        SqlConnection& operator*() const { return *connection; }
        SqlConnection* operator->() const { return connection.get(); }

    private:
        SqlPool& pool;
        std::unique_ptr<SqlConnection> connection;
    };

    SqlPool(Open open, std::size_t maxCount) : open(std::move(open)), maxCount(maxCount) {}

    /// Waits some seconds for a connection; throws Fault 503 when none becomes free. When no other can be
    /// opened, it waits for one of those that are lent, and throws at once when none is lent.
    Lease Borrow();
    /// Joins pools: when a connection breaks in one of them, the idle ones in the others count as broken,
    /// too, since SQLite shares its state of a file among all connections of a process.
    static void Join(const std::vector<std::shared_ptr<SqlPool>>& pools);

private:
    std::unique_ptr<SqlConnection> TakeFree(std::vector<std::unique_ptr<SqlConnection>>& broken);
    std::unique_ptr<SqlConnection> TryOpen(std::unique_lock<std::mutex>& lock);
    void Drop();
    void Return(std::unique_ptr<SqlConnection> connection);

    Open open;
    std::size_t maxCount;
    std::mutex turn;
    std::condition_variable returned;
    std::vector<std::unique_ptr<SqlConnection>> free;
    std::size_t lent = 0;
    std::chrono::steady_clock::time_point retry;  // until then opening fails with the last failure
    std::string failure;
    std::vector<SqlPool*> joined = {this};
};

}  // namespace kel::server
