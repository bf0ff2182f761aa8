#pragma once

#include <string>

namespace kel {

/// The proxy that exchanges go through by the user's settings, such as "127.0.0.1:8080", "by the script
/// http://…" or "none". Nothing is looked up in the network. Read from WinINet.
std::wstring DescribeProxy();

}  // namespace kel
