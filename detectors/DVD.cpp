#include "detectors/Detectors.h"

namespace kel {

bool DVD::Detect()
{
    return Guarded(L"kel::DVD::Detect", L"Error in DVD detection.", [] {});
}

}  // namespace kel
