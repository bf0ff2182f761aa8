#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kel::server {

enum class Result { Pass, Fail, Unknown };

/// "pass", "fail" or "unknown".
std::string_view NameOf(Result result);

/// A way to compare what a machine has with what is needed.
enum class Comparison { AtLeastVersion, AtLeast, AtMost, Equals, OneOf, Contains, Any, Yes, No };

/// The comparison of that name, as requirement files have it ("at least version"). Nothing for any other
/// text.
std::optional<Comparison> ComparisonOf(std::string_view name);
std::string_view NameOf(Comparison comparison);

/// Why the comparison could never hold with this needed text, such as "at least" with "many"; empty when it
/// could.
std::string WhyNeverMet(Comparison comparison, std::string_view needed);

/// Compares strictly. A value that the report lacks (null), that is blank, longer than 64 KB, or that cannot
/// be read as what the comparison compares is unknown: only a value that was understood fails.
Result Compare(Comparison comparison, const std::string* found, std::string_view needed);

}  // namespace kel::server
