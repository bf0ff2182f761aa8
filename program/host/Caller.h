// Which browser extension has started the program.
#pragma once

#include <string>
#include <vector>

namespace kel::program {

/// Whether the arguments, without the program's name, are those that a browser starts its native host with:
/// Chromium names the extension's origin first; Firefox a manifest of the host, and then the extension's id.
bool IsStartedByBrowser(const std::vector<std::string>& arguments);

/// Whether the caller is one of the extensions that this build is for.
/// @param callers the arguments of the browser that are not options
bool IsAllowedCaller(const std::vector<std::string>& callers);

}  // namespace kel::program
