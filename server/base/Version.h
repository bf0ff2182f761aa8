#pragma once

namespace kel::server {

/// The three numbers that this program was built as; its package has the same.
extern const char* const Version;

}  // namespace kel::server
