#include "detectors/Detectors.h"

namespace kel {

bool Sound::Detect()
{
    return Guarded(L"kel::Sound::Detect", nullptr, [] {});
}

}  // namespace kel
