#pragma once

#include <optional>
#include <string_view>

namespace kel {

/// Whether a requirement is met; unknown when the value is absent or cannot be compared.
enum class Result { Pass, Fail, Unknown };

/// "pass", "fail" or "unknown".
std::string_view ToString(Result result);

/// The result that ToString gives this text for; nothing for any other text.
std::optional<Result> ParseResult(std::string_view text);

}  // namespace kel
