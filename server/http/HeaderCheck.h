#pragma once

#include <string_view>

namespace kel::server {

/// Checks the bytes of a request's header, as they arrive, for folded lines: the parser joins such a line
/// with the one before, while a proxy may have read it as a separate header.
class HeaderCheck {
public:
    /// False once a line begins with a blank. Bytes after the header's end are ignored.
    bool Accept(std::string_view bytes);

private:
    enum class At { Line, LineStart, End };

    At at = At::Line;
};

}  // namespace kel::server
