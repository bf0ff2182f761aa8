#pragma once

#include <cstdint>

#include "run/store/GroupID.h"

namespace kel {

/// The key of a stored value: a group and an index within it; index 0 is the first or only value.
class SystemValueID {
public:
    SystemValueID() = default;
    explicit SystemValueID(GroupID groupId, std::int32_t valueIndex = 0);
    virtual ~SystemValueID() = default;
    SystemValueID(const SystemValueID&) = default;
    SystemValueID& operator=(const SystemValueID&) = default;

    const GroupID& Group() const { return group; }
    std::int32_t Index() const { return index; }

    bool operator==(const SystemValueID& other) const { return group == other.group && index == other.index; }

private:
    GroupID group;
    std::int32_t index = 0;
};

}  // namespace kel
