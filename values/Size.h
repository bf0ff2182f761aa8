#pragma once

#include <cstdint>

#include "values/Value.h"

namespace kel {

/// An amount of bytes; units are steps of 1024.
class Size : public Value {
public:
    Size() = default;
    explicit Size(std::uint64_t byteCount) : bytes(byteCount) {}
    Size(const Size&) = default;
    Size& operator=(const Size&) = default;

    std::uint64_t Bytes() const { return bytes; }

    /// Adds an amount; a sum that would be too large becomes the largest amount.
    Size& operator+=(const Size& other);

    /// Reads a text such as "2 GB" or "1.5kb"; without a unit the number counts bytes. The first of KB, MB,
    /// GB, TB that occurs anywhere decides. A text without a readable number is 0 bytes and a success.
    /// @return false, with a warning in the log and 0 bytes, for a null text or when reading fails
    bool Initialize(const wchar_t* text);

    /// The amount in the largest fitting unit with one decimal, as in "1.5 KB". All objects share one buffer,
    /// valid until the next ToString of any Size.
    const wchar_t* ToString() const override;

    /// A heap copy owned by the caller; null when memory is exhausted.
    virtual Size* Clone() const;

private:
    std::uint64_t bytes = 0;
};

}  // namespace kel
