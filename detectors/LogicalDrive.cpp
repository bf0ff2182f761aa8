#include "detectors/Detectors.h"

namespace kel {

bool LogicalDrive::Detect()
{
    return Guarded(L"kel::LogicalDrive::Detect", L"Error in LogicalDrive detection.", [] {});
}

void LogicalDrive::Initialize()
{
    const LogScope trace(L"kel::LogicalDrive::Initialize");
}

}  // namespace kel
