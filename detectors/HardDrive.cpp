#include "detectors/Detectors.h"

namespace kel {

bool HardDrive::Detect()
{
    return Guarded(L"kel::HardDrive::Detect", L"Error in HardDrive detection.", [] {});
}

void HardDrive::Initialize()
{
    const LogScope trace(L"kel::HardDrive::Initialize");
}

}  // namespace kel
