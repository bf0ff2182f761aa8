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

/// Reads the keys of the suite's installers. They outlive it: whether one of its programs is there has to be
/// known from elsewhere.
OfficeInfo ReadOffice(const SoftwareFunctions& functions);

/// The newest generation among the names of installed products, such as "O365ProPlusRetail,VisioProRetail".
/// Products that are sold beside the suite do not count; empty when there is no other.
std::wstring FindOfficeGeneration(const std::wstring& productIds);

}  // namespace kel
