#include "detectors/Detectors.h"

namespace kel {

bool SCSI::Detect()
{
    return Guarded(L"kel::SCSI::Detect", L"Error in SCSI detection.", [] {});
}

}  // namespace kel
