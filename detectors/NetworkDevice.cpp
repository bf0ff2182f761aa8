#include "detectors/NetworkDevice.h"

namespace kel {

bool NetworkDevice::Detect()
{
    return Guarded(L"kel::NetworkDevice::Detect", L"Error in NetworkDevice detection.", [] {});
}

}  // namespace kel
