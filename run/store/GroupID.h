#pragma once

#include <string>

namespace kel {

/// Identifies a group of values by a number that the analysis service fixes. Its text form is what the report
/// writes; comparisons look at the number only.
class GroupID {
public:
    GroupID() = default;
    /// Keeps the text and reads the number from its leading digits; 0 when there are none.
    explicit GroupID(const std::wstring& idText);
    /// The text is the number in decimal.
    explicit GroupID(unsigned idNumber);

    const std::wstring& Text() const { return text; }
    unsigned Number() const { return number; }

    bool operator==(const GroupID& other) const { return number == other.number; }

private:
    std::wstring text;
    unsigned number = 0;
};

}  // namespace kel
