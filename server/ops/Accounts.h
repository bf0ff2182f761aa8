#pragma once

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "server/store/Database.h"

namespace kel::server {

/// The account that the audit names for a command.
inline constexpr const char* CommandLine = "command line";

/// Runs a command on accounts: `user add ROLE NAME` (the password is the input's first line), `user remove
/// NAME`, `user list`, `token add NAME [DAYS]`. For other words returns false, and opens no database. Throws
/// std::runtime_error when the command fails.
bool RunAccountCommand(const std::vector<std::string>& words,
                       const std::function<std::unique_ptr<Database>()>& open, std::istream& input,
                       std::ostream& output);

}  // namespace kel::server
