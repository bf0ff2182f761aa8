#pragma once

#include <cstdint>
#include <string>

#include "values/SharedText.h"
#include "values/Value.h"

namespace kel {

/// A version, kept as the text in which it was found and compared by a packed quantity.
class Version : public Value {
public:
    /// "0.0"
    Version();
    /// @param newText zero-terminated; null gives the empty text
    explicit Version(const wchar_t* newText);
    explicit Version(const std::wstring& newText);
    /// The number in decimal.
    explicit Version(std::int64_t number);
    Version(const Version&) = default;
    Version& operator=(const Version&) = default;
    Version& operator=(const wchar_t* newText);
    Version& operator=(const std::wstring& newText);

    /// Replaces the text; null gives the empty text. Always true.
    bool Set(const wchar_t* newText);
    bool Set(const std::wstring& newText);

    /// The first four fields packed into 16 bits each, the first one highest; a last capital letter adds its
    /// character code. A field that is not a whole number logs an error and gives the quantity packed before
    /// it, which ranks such a version low. Fields above 65535 spill into their neighbour. The service expects
    /// both.
    std::uint64_t Quantity() const;

    bool operator==(const Version& other) const { return Quantity() == other.Quantity(); }
    bool operator<(const Version& other) const { return Quantity() < other.Quantity(); }

    /// The text as it was found, valid as long as the object is alive and unchanged.
    const wchar_t* ToString() const override;

    /// A heap copy that shares the text, owned by the caller; null when memory is exhausted.
    virtual Version* Clone() const;

private:
    SharedText text;
};

}  // namespace kel
