#pragma once

#include "values/Value.h"

namespace kel {

/// A yes/no fact.
class Exists : public Value {
public:
    Exists() = default;
    explicit Exists(bool flag) : value(flag) {}
    Exists(const Exists&) = default;
    Exists& operator=(const Exists&) = default;
    Exists& operator=(bool flag);

    bool Get() const { return value; }

    /// "Yes" or "No". All objects share one buffer, kept for callers that copy at once:
    /// the next ToString of any Exists overwrites it.
    const wchar_t* ToString() const override;

    /// A heap copy owned by the caller; null when memory is exhausted.
    virtual Exists* Clone() const;

private:
    bool value = false;
};

}  // namespace kel
