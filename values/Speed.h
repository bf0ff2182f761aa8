#pragma once

#include <cstdint>

#include "values/Value.h"

namespace kel {

/// A frequency in hertz; units are steps of 1000.
class Speed : public Value {
public:
    Speed() = default;
    Speed(const Speed&) = default;
    Speed& operator=(const Speed&) = default;

    std::uint64_t Hertz() const { return hertz; }

    /// Whether the frequency is known, that is, not 0.
    bool HasValue() const { return hertz != 0; }

    /// Reads a text such as "2400 MHz"; without a unit the number counts hertz. The first of KHZ, MHZ, GHZ
    /// that occurs anywhere, in any case, decides. A text without a number gives 0 Hz and is a success.
    /// @return false for a null text, or, with a warning in the log, when reading fails
    bool Initialize(const wchar_t* text);

    /// The frequency in the largest fitting unit with one decimal, as in "2.4 GHz". All objects share one
    /// buffer, valid until the next ToString of any Speed.
    const wchar_t* ToString() const override;

    /// A heap copy owned by the caller; null when memory is exhausted.
    virtual Speed* Clone() const;

private:
    std::uint64_t hertz = 0;
};

}  // namespace kel
