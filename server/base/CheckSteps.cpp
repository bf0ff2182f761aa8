#include "server/base/CheckSteps.h"

namespace kel::server {

void CheckSteps::Expect(const std::string& session)
{
    const std::lock_guard lock(turn);
    const auto found = places.find(session);
    if (found != places.end()) {
        entries.splice(entries.begin(), entries, found->second);
        return;
    }
    entries.push_front({session});
    places.emplace(session, entries.begin());
    if (entries.size() > MaxSessions) {
        places.erase(entries.back().session);
        entries.pop_back();
    }
}

void CheckSteps::Reach(const std::string& session, Step step)
{
    const std::lock_guard lock(turn);
    const auto found = places.find(session);
    if (found == places.end() || found->second->isReached.at(step))
        return;
    found->second->isReached.at(step) = true;
    ++counts.at(step);
}

}  // namespace kel::server
