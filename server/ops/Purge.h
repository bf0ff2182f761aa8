#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "server/store/Database.h"

namespace kel::server {

/// What `purge` chooses reports by.
inline constexpr std::array<std::string_view, 3> PurgeOptions{"--older", "--session", "--machine"};

/// Deletes the reports, with their verdicts, that the option and its value choose: older than an age (90d,
/// 12h), of a session, of a machine. Throws std::runtime_error for another option, and for an age that is
/// none.
void Purge(Database& database, std::string_view option, const std::string& value);

/// Deletes what was received before that time, until `ends` says to end; how many reports.
int PurgeOlder(Database& database, std::int64_t time, const std::function<bool()>& ends);

}  // namespace kel::server
