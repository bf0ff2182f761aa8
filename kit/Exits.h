#pragma once

namespace kel::kit {

/// With which a test, or a script of a step, ends when the machine lacks what it needs.
inline constexpr unsigned long NotHereCode = 77;

}  // namespace kel::kit
