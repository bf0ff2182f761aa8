#include "detectors/Detectors.h"

namespace kel {

bool Applications::Detect()
{
    return Guarded(L"kel::Applications::Detect", L"Error with Applications detection.", [] {});
}

void Applications::Initialize()
{
    const LogScope trace(L"kel::Applications::Initialize");
}

}  // namespace kel
