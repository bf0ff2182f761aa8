#include "detectors/Detectors.h"

namespace kel {

bool CDRom::Detect()
{
    return Guarded(L"kel::CDRom::Detect", L"Error in CDRom detection.", [] {});
}

}  // namespace kel
