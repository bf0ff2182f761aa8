#include "detectors/Detectors.h"

namespace kel {

bool Software::Detect()
{
    return Guarded(L"kel::Software::Detect", L"Error in Software detection.", [] {});
}

}  // namespace kel
