#pragma once

#include <string>

namespace kel {

/// The proxy that exchanges go through by the user's settings, such as "127.0.0.1:8080", "by the script
/// http://…" or "none", also where one is detected. Nothing is looked up in the network. Read from the user's
/// registry and WinINet; its list of settings for a connection takes 20 ms under Wine.
std::wstring DescribeProxy();

}  // namespace kel
