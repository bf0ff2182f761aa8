#include "detectors/CPU.h"

namespace kel {

bool CPU::Detect()
{
    return Guarded(L"kel::CPU::Detect", L"Error in CPU detection.", [] {});
}

}  // namespace kel
