#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "server/store/Database.h"

namespace kel::server {

/// The options by which `purge` selects reports.
inline constexpr std::array<std::string_view, 3> PurgeOptions{"--older", "--session", "--machine"};

/// Deletes the reports, with their verdicts, that the option and its value select: older than an age (90d,
/// 12h), of a session, of a machine. Throws std::runtime_error for another option, and for an invalid age.
void Purge(Database& database, std::string_view option, const std::string& value);

/// Deletes reports that were received before that time, until `ends` returns true. Returns how many.
int PurgeOlder(Database& database, std::int64_t time, const std::function<bool()>& ends);

}  // namespace kel::server
