#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// What a visitor reads out to support: the first eight digits of a session that is a GUID, in upper case;
/// any other session as it is.
std::string SessionNumber(std::string_view session);

/// With what a session begins that has this number; none unless the text is eight hexadecimal digits, which
/// are the number of a GUID.
std::vector<std::string> SessionBeginnings(std::string_view number);

}  // namespace kel
