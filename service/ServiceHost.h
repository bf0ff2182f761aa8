#pragma once

#include <string>

namespace kel {

/// The host of the analysis service that requests go to, at port 80: the one that the build sets, unless
/// SetServiceHost named another one.
const std::wstring& ServiceHost();

/// Names the host for all later requests of the process. The control never does: a page must not choose who
/// gets the report.
void SetServiceHost(std::wstring host);

}  // namespace kel
