#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "server/report/Report.h"

namespace kel::server {

/// The values of the reports that were last uploaded or requested, by their ids in the database, so that a
/// report is parsed once and not for each request. A stored report never changes, so no entry is out of date.
/// For any thread.
class ReportCache {
public:
    /// Keeps reports of about that many bytes in total.
    explicit ReportCache(std::size_t maxBytes) : maxBytes(maxBytes) {}

    /// Null if the report is not in the cache.
    std::shared_ptr<const Report> Find(std::int64_t id);
    void Add(std::int64_t id, std::shared_ptr<const Report> report);

private:
    struct Entry {
        std::int64_t id;
        std::shared_ptr<const Report> report;
        std::size_t bytes;
    };

    const std::size_t maxBytes;
    std::mutex turn;
    std::list<Entry> entries;  // the most recently used one first
    std::unordered_map<std::int64_t, std::list<Entry>::iterator> places;
    std::size_t bytes = 0;
};

}  // namespace kel::server
