#pragma once

#include <string_view>

namespace kel::server {

/// Looks at the bytes of a request's header as they come, for folded lines: the parser joins such a line with
/// the one before, and a proxy may have read it as a header of its own.
class HeaderCheck {
public:
    /// False once a line begins with a blank. What follows the header's end is not looked at.
    bool Accept(std::string_view bytes);

private:
    enum class At { Line, LineStart, End };

    At at = At::Line;
};

}  // namespace kel::server
