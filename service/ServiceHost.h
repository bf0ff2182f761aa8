#pragma once

#include <string>
#include <string_view>

namespace kel {

/// The host of the analysis service that requests go to: the one that SetServiceHost named; otherwise the one
/// of the machine's policy; otherwise the one that the build sets.
const std::wstring& ServiceHost();

/// Whether requests go there by HTTPS, to port 443, or by plain HTTP, to port 80: as the build sets it,
/// unless SetServiceHost named a scheme.
bool IsServiceSecure();

/// Names the host for all later requests of the process. The control never does: a page must not choose who
/// gets the report.
/// @param address a host, or "http://" or "https://" and a host
void SetServiceHost(const std::wstring& address);

/// The host and where it comes from, such as "analysis.example (policy)".
std::wstring DescribeServiceHost();

/// One line on a policy whose text is not a host's name, and which was ignored; empty without one.
std::wstring DescribeRefusedHost();

/// Whether a text is the name of a host or an address of version 4: at most 253 letters, digits, dots and
/// hyphens, with 1 to 63 between dots. So it has no scheme, port or path, and adds nothing to a request.
bool IsHostName(std::wstring_view text);

}  // namespace kel
