#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>

#include "server/store/Database.h"
#include "verdict/Requirements.h"

namespace kel::server {

/// Parsed requirements. A published version never changes, so no entry is out of date; the store is asked
/// each time which version is a referrer's newest. For any thread.
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
    const std::size_t maxSets;  // beyond it the oldest version is dropped
    std::mutex turn;
    std::map<std::int64_t, std::shared_ptr<const Requirements>> sets;
};

}  // namespace kel::server
