// A run of the kit on this machine.
#pragma once

#include <string>

#include "kit/Row.h"

namespace kel::kit {

struct Options {
    std::wstring output;        ///< folder of the results
    std::wstring tests = L"*";  ///< filter of the unit tests
    std::wstring facts;         ///< a file of `kel report`: only its values are compared
    bool asksForRights = true;
};

/// Runs everything and writes result.json, result.html and recording.txt.
/// @return how many checks are wrong
/// @throws UserError when a file cannot be read or written
int RunKit(const Options& options);

/// The part that needs rights, in the process that has them: writes its rows to rights.json.
void RunWithRights(const std::wstring& output);

}  // namespace kel::kit
