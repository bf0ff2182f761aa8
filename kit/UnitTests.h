#pragma once

#include <string>

#include "kit/Row.h"

namespace kel::kit {

/// Runs each test of the test programs in a process of its own, as ctest does: some things happen once per
/// process.
/// @param folder of the programs
/// @param filter of the tests, as their programs take it: "*" for all
Rows RunUnitTests(const std::wstring& folder, const std::wstring& filter);

/// The full names in the list that a test program prints.
std::vector<std::string> ReadTestNames(const std::string& listed);

}  // namespace kel::kit
