// For tests that change the machine.
#pragma once

namespace kel::test {

bool IsWine();

/// Only Wine lets a test change the machine, which is the test's own there: on Windows the test ends as one
/// that lacks what it needs.
void RequireWine();

}  // namespace kel::test
