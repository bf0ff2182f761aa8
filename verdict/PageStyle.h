#pragma once

namespace kel {

/// The text of examples/check.css, which the build embeds.
extern const char* const PageStyle;

}  // namespace kel
