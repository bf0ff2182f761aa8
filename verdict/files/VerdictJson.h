#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>

#include "verdict/Verdict.h"

namespace kel {

/// Reads a verdict as RenderJson of verdict/ writes it, which is what the service answers. Nothing for
/// anything else. The lines have no groups.
std::optional<Verdict> ReadVerdict(const nlohmann::json& content);

}  // namespace kel
