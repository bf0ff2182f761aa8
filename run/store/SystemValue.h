#pragma once

#include <boost/shared_ptr.hpp>
#include <string>

#include "run/store/SystemValueID.h"
#include "values/Value.h"

namespace kel {

/// A value in the store, with its key.
class SystemValue {
public:
    /// @param systemValue the typed value; not null
    SystemValue(const SystemValueID& valueId, boost::shared_ptr<const Value> systemValue);
    virtual ~SystemValue() = default;
    SystemValue(const SystemValue&) = default;
    SystemValue& operator=(const SystemValue&) = default;

    const SystemValueID& ID() const { return id; }

    /// A copy of the value's text form.
    std::wstring Text() const;

private:
    SystemValueID id;
    boost::shared_ptr<const Value> value;
};

}  // namespace kel
