#pragma once

#include <string>

namespace kel {

/// The host of the analysis service that requests go to: the one that the build sets, unless SetServiceHost
/// named another one.
const std::wstring& ServiceHost();

/// Whether requests go there by HTTPS, to port 443, or by plain HTTP, to port 80: as the build sets it,
/// unless SetServiceHost named a scheme.
bool IsServiceSecure();

/// Names the host for all later requests of the process. The control never does: a page must not choose who
/// gets the report.
/// @param address a host, or "http://" or "https://" and a host
void SetServiceHost(const std::wstring& address);

}  // namespace kel
