#include "detectors/Detectors.h"

namespace kel {

bool Monitor::Detect()
{
    return Guarded(L"kel::Monitor::Detect", L"Error in Monitor detection.", [] {});
}

}  // namespace kel
