#pragma once

namespace kel {

/// The lower-case form of a letter of any script; every other character itself. The same on every system,
/// whatever its locale.
char32_t LowerCase(char32_t c);

}  // namespace kel
