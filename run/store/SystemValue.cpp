#include "run/store/SystemValue.h"

#include <utility>

namespace kel {

SystemValue::SystemValue(const SystemValueID& valueId, boost::shared_ptr<const Value> systemValue)
    : id(valueId), value(std::move(systemValue))
{
}

std::wstring SystemValue::Text() const
{
    return value->ToString();
}

}  // namespace kel
