#pragma once

#include <cstdint>

#include "values/Value.h"

namespace kel {

/// A number of things.
class Count : public Value {
public:
    explicit Count(std::int64_t number) : value(number) {}
    Count(const Count&) = default;
    Count& operator=(const Count&) = default;

    /// The number in decimal. All objects share one buffer, valid until the next ToString of any Count.
    const wchar_t* ToString() const override;

    /// A heap copy owned by the caller; null when memory is exhausted.
    virtual Count* Clone() const;

private:
    std::int64_t value;
};

}  // namespace kel
