#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "server/verdict/Result.h"

namespace kel::server {

/// A way to compare what a machine has with what is needed.
enum class Comparison { AtLeastVersion, AtLeast, AtMost, Equals, OneOf, Contains, Any, Yes, No };

/// The comparison of that name, as requirement files have it ("at least version"). Nothing for any other
/// text.
std::optional<Comparison> ComparisonOf(std::string_view name);
std::string_view NameOf(Comparison comparison);

/// Why the comparison could never hold with this needed text, such as "at least" with "many"; empty when it
/// could.
std::string WhyNeverMet(Comparison comparison, std::string_view needed);

/// What can be compared of a report's value: without the blanks around it, in lower case. Empty when the
/// report lacks it (null), when it is blank, and when it is longer than 4 KB.
std::string Comparable(const std::string* value);

/// Compares strictly what Comparable gave with what is needed. What is empty, and what cannot be read as what
/// the comparison compares, is unknown: only a value that was understood fails.
Result Compare(Comparison comparison, std::string_view found, std::string_view needed);

}  // namespace kel::server
