#pragma once

#include <cstdint>
#include <string>

#include "values/SharedText.h"
#include "values/Value.h"

namespace kel {

/// The size of a picture in physical pixels, such as "1920x1080"; unknown when either edge is.
class Resolution : public Value {
public:
    /// Unknown, with an empty text.
    Resolution() = default;
    /// Unknown when an edge is 0 or above 65535.
    Resolution(std::uint32_t newWidth, std::uint32_t newHeight);
    /// Reads a text as Initialize does.
    explicit Resolution(const std::wstring& newText);
    Resolution(const Resolution&) = default;
    Resolution& operator=(const Resolution&) = default;

    /// Reads two whole numbers with "x", "X" or "*" between them, blanks around it allowed. What follows the
    /// second number is ignored.
    /// @return false, and the resolution is unknown, for a null text, a number that is missing, 0 or above
    /// 65535
    bool Initialize(const wchar_t* newText);

    bool HasValue() const { return width != 0; }
    std::uint32_t Width() const { return width; }
    std::uint32_t Height() const { return height; }

    bool operator==(const Resolution& other) const { return width == other.width && height == other.height; }

    /// Whether a picture of the required size fits in either orientation: the long edges are compared, and
    /// the short ones. An unknown resolution neither covers another nor is covered.
    bool Covers(const Resolution& required) const;

    /// Such as "1920x1080", or empty; valid as long as the object is alive and unchanged.
    const wchar_t* ToString() const override;

    /// A heap copy that shares the text, owned by the caller; null when memory is exhausted.
    virtual Resolution* Clone() const;

private:
    bool Set(std::uint32_t newWidth, std::uint32_t newHeight);

    SharedText text;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

}  // namespace kel
