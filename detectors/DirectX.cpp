#include "detectors/Detectors.h"

namespace kel {

bool DirectX::Detect()
{
    return Guarded(L"kel::DirectX::Detect", L"Error in DirectX detection.", [] {});
}

}  // namespace kel
