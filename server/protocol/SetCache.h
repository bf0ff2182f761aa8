#pragma once

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
    explicit SetCache(Database& database) : database(database) {}

    /// Throws std::runtime_error when the stored text cannot be read.
    std::shared_ptr<const Requirements> Get(std::int64_t set);

private:
    Database& database;
    std::mutex turn;
    std::map<std::int64_t, std::shared_ptr<const Requirements>> sets;
};

}  // namespace kel::server
