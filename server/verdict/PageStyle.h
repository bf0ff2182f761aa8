#pragma once

namespace kel::server {

/// The text of examples/check.css, which the build puts in.
extern const char* const PageStyle;

}  // namespace kel::server
