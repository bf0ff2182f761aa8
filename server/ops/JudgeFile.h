#pragma once

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>

#include "server/store/Database.h"

namespace kel::server {

/// The exit code of `judge` when it fails; its other codes are the total's: 0 pass, 1 fail, 2 unknown.
inline constexpr int JudgeFailed = 3;

/// Judges a file of a machine's values (kel's support file, a report's XML, this service's export) by a
/// product's newest requirements, or by a file of requirements: a product's name has neither a dot nor a
/// slash. Opens the database only for a product. Writes the verdict, the failing lines first, with the
/// reasons for empty values, or as JSON. Returns the exit code. Throws std::runtime_error with one line.
int JudgeFile(const std::string& product, const std::string& file, bool asJson,
              const std::function<std::unique_ptr<Database>()>& open, std::ostream& output);

}  // namespace kel::server
