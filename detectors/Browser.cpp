#include "detectors/Detectors.h"

namespace kel {

bool Browser::Detect()
{
    return Guarded(L"kel::Browser::Detect", L"Error in Browser detection.", [] {});
}

void Browser::Initialize()
{
    const LogScope trace(L"kel::Browser::Initialize");
}

}  // namespace kel
