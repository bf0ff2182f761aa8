#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>

#include "server/store/Database.h"
#include "verdict/Requirements.h"

namespace kel::server {

/// Published requirements, read. A published version never changes, so what is here is never out of date;
/// which version is a referrer's newest is asked of the store each time. For any thread.
class SetCache {
public:
    static constexpr std::size_t MaxSets = 1000;  // more versions than a service has products

    explicit SetCache(Database& database, std::size_t maxSets = MaxSets)
        : database(database), maxSets(maxSets)
    {
    }

    /// Throws std::runtime_error when the stored text cannot be read.
    std::shared_ptr<const Requirements> Get(std::int64_t set);

private:
    Database& database;
    const std::size_t maxSets;  // past it the oldest version goes
    std::mutex turn;
    std::map<std::int64_t, std::shared_ptr<const Requirements>> sets;
};

}  // namespace kel::server
