#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kel::server {

/// A time as people read it: "2026-03-01 14:05:09". UTC.
std::string TimeText(std::int64_t time);

/// The same for programs: "2026-03-01T14:05:09.123Z".
std::string IsoTime(std::int64_t time);

/// The day of a time: "2026-03-01". UTC.
std::string DayText(std::int64_t time);

/// When the day "2026-03-01" begins, UTC. Nothing for any other text.
std::optional<std::int64_t> ParseDay(std::string_view text);

/// The text, encoded for use in an address.
std::string UrlEncode(std::string_view text);

/// A number with commas between the thousands.
std::string Grouped(std::int64_t number);

/// A share in percent, rounded; `whole` is not 0.
int Percent(std::int64_t part, std::int64_t whole);

/// A share as a whole percentage: "12 %"; "–" when `whole` is 0.
std::string Percentage(std::int64_t part, std::int64_t whole);

}  // namespace kel::server
