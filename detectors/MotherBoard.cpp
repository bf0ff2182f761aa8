#include "detectors/MotherBoard.h"

namespace kel {

bool MotherBoard::Detect()
{
    return Guarded(L"kel::MotherBoard::Detect", L"Error in Motherboard detection.", [] {});
}

}  // namespace kel
