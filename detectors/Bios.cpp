#include "detectors/Bios.h"

namespace kel {

bool Bios::Detect()
{
    return Guarded(L"kel::Bios::Detect", L"Error in Bios detection.", [] {});
}

}  // namespace kel
