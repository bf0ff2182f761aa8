#include "server/protocol/SetCache.h"

#include "server/store/RequirementSets.h"

namespace kel::server {

std::shared_ptr<const Requirements> SetCache::Get(std::int64_t set)
{
    {
        const std::lock_guard lock(turn);
        const auto found = sets.find(set);
        if (found != sets.end())
            return found->second;
    }
    auto read = std::make_shared<const Requirements>(Requirements::Read(RequirementSets(database).Text(set)));
    const std::lock_guard lock(turn);
    if (sets.size() >= maxSets)
        sets.erase(sets.begin());
    sets[set] = read;
    return read;
}

}  // namespace kel::server
