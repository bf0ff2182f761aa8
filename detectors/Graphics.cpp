#include "detectors/Detectors.h"

namespace kel {

bool Graphics::Detect()
{
    return Guarded(L"kel::Graphics::Detect", L"Error in Graphics detection.", [] {});
}

}  // namespace kel
