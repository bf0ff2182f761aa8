#pragma once

#include <string>

#include "probes/software/SoftwareFunctions.h"
#include "values/Name.h"

namespace kel {

/// The office suite as a whole; unknown facts are empty.
struct OfficeInfo {
    Name generation;  ///< such as "Microsoft 365" or "2021"
    Name bitness;     ///< "64-bit" or "32-bit"
};

/// Reads the keys of the suite's installers. The keys remain after the suite is removed, so the caller has to
/// check that one of its programs is installed.
OfficeInfo ReadOffice(const SoftwareFunctions& functions);

/// The newest generation among the names of installed products, such as "O365ProPlusRetail,VisioProRetail".
/// Products that are sold separately from the suite do not count; empty when there are no others.
std::wstring FindOfficeGeneration(const std::wstring& productIds);

}  // namespace kel
