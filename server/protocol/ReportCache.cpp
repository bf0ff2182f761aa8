#include "server/protocol/ReportCache.h"

namespace kel::server {

std::shared_ptr<const Report> ReportCache::Find(std::int64_t id)
{
    const std::lock_guard lock(turn);
    const auto found = places.find(id);
    if (found == places.end())
        return nullptr;
    entries.splice(entries.begin(), entries, found->second);
    return found->second->report;
}

void ReportCache::Add(std::int64_t id, std::shared_ptr<const Report> report)
{
    const std::size_t size = report->Bytes();
    const std::lock_guard lock(turn);
    if (places.contains(id))
        return;
    entries.push_front({id, std::move(report), size});
    places[id] = entries.begin();
    bytes += size;
    while (bytes > maxBytes) {
        bytes -= entries.back().bytes;
        places.erase(entries.back().id);
        entries.pop_back();
    }
}

}  // namespace kel::server
