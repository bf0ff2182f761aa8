#pragma once

#include <cstdint>
#include <string>

#include "values/Value.h"

namespace kel {

/// A transfer rate in bits per second. Units are steps of 1024, also when printed; the analysis service
/// relies on it.
class Bandwidth : public Value {
public:
    /// Reads the text at once; see Initialize.
    explicit Bandwidth(const std::wstring& text);
    Bandwidth(const Bandwidth&) = default;
    Bandwidth& operator=(const Bandwidth&) = default;

    std::uint64_t BitsPerSecond() const { return bitsPerSecond; }

    /// Reads a text such as "10 Mbps"; without a unit the number counts bits per second. The first of KBPS,
    /// MBPS, GBPS that occurs anywhere, in any case, decides. A text without a number gives 0 and is a
    /// success.
    /// @return false for a null text, or, with a warning in the log, when reading fails
    bool Initialize(const wchar_t* text);

    /// The rate in the largest fitting unit with one decimal, as in "1.5 Mbps". All objects share one buffer,
    /// valid until the next ToString of any Bandwidth.
    const wchar_t* ToString() const override;

    /// A heap copy owned by the caller; null when memory is exhausted.
    virtual Bandwidth* Clone() const;

private:
    std::uint64_t bitsPerSecond = 0;
};

}  // namespace kel
