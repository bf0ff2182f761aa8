#pragma once

#include <string>
#include <string_view>

#include "verdict/Catalogue.h"
#include "verdict/Result.h"

namespace kel {

/// A way to compare the value that a machine has with the text that a requirement needs. There is one object
/// for each name.
struct Comparison {
    std::string_view name;  // as requirements have it: "at least version"

    /// Why no value could ever satisfy this needed text, such as "many" for "at least"; empty when one could.
    std::string_view (*unsatisfiableReason)(std::string_view needed);

    /// Compares a value that is not empty; both texts are as NormalizeValue returns them. Strict: a value
    /// that cannot be read as the kind that is compared is unknown, so only values that were understood fail.
    Result (*compare)(std::string_view found, std::string_view needed);

    /// Whether a value that is smaller than the size that was sold is compared by its nominal size.
    bool comparesNominalSizes = false;
};

/// The comparison of this name; null for any other text.
const Comparison* ParseComparison(std::string_view name);

/// The text of a value as it is compared: in lower case, without the blanks at its ends. Empty when it is
/// blank, and when it is longer than 4 KB.
std::string NormalizeValue(std::string_view value);

/// The result for a value that NormalizeValue returned; unknown when it is empty. With `soldAs`, the value is
/// at least as large as its nominal size.
Result Compare(const Comparison& comparison, std::string_view found, std::string_view needed,
               SoldAs soldAs = SoldAs::Nothing);

}  // namespace kel
