#include "detectors/Detectors.h"

namespace kel {

bool GPU::Detect()
{
    return Guarded(L"kel::GPU::Detect", L"Error in GPU::Detect", [] {});
}

}  // namespace kel
