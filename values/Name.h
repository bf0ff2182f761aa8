#pragma once

#include <string>

#include "values/SharedText.h"
#include "values/Value.h"

namespace kel {

/// A free text, kept unchanged.
class Name : public Value {
public:
    Name();
    /// @param newText zero-terminated; null gives the empty text
    explicit Name(const wchar_t* newText);
    /// Takes the characters up to the first zero.
    explicit Name(const std::wstring& newText);
    /// Shares the text.
    explicit Name(const SharedText& newText);
    Name(const Name&) = default;
    Name& operator=(const Name&) = default;
    Name& operator=(const wchar_t* newText);

    /// Whether the text is not empty.
    bool HasValue() const;

    /// Exact, case-sensitive comparison.
    /// @throws _com_error E_FAIL when the other name has no buffer at all
    bool operator==(const Name& other) const;

    /// The text itself, valid as long as the object is alive and unchanged.
    const wchar_t* ToString() const override;

    /// A heap copy that shares the text, owned by the caller; null when memory is exhausted.
    virtual Name* Clone() const;

private:
    SharedText text;
};

}  // namespace kel
