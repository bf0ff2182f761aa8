#pragma once

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "server/store/Database.h"

namespace kel::server {

/// Whom the audit names for what a command does.
inline constexpr const char* CommandLine = "command line";

/// Runs a command on accounts: `user add ROLE NAME` (the password is the input's first line), `user remove
/// NAME`, `user list`, `token add NAME [DAYS]`. False, and no store is opened, when the words are no such
/// command; throws
/// std::runtime_error when it cannot be done.
bool RunAccountCommand(const std::vector<std::string>& words,
                       const std::function<std::unique_ptr<Database>()>& open, std::istream& input,
                       std::ostream& output);

}  // namespace kel::server
