#pragma once

#include <string>

#include "kit/Row.h"

namespace kel::kit {

/// Whether this process has an administrator's rights.
bool HasRights();

/// Starts a program as administrator, after the system's question, and waits for its end.
/// @return false when the user refused
bool RunAsAdministrator(const std::wstring& program, const std::wstring& arguments);

/// Whether this is Wine.
bool IsWine();

}  // namespace kel::kit
