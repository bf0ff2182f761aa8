#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "server/base/Exchange.h"
#include "server/http/Target.h"

namespace kel::server {

/// An error as JSON.
Answer ProgramError(int status, const std::string& reason);

/// 400 with the name of a query parameter that is not one of the allowed ones or is repeated, and with the
/// allowed ones; nothing when all are fine.
std::optional<Answer> RefuseParameters(const Target& target, std::span<const std::string_view> allowed);

}  // namespace kel::server
