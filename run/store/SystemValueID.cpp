#include "run/store/SystemValueID.h"

#include <utility>

namespace kel {

SystemValueID::SystemValueID(GroupID groupId, std::int32_t valueIndex)
    : group(std::move(groupId)), index(valueIndex)
{
}

}  // namespace kel
