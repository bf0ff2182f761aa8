#include "detectors/OS.h"

namespace kel {

bool OS::Detect()
{
    return Guarded(L"kel::OS::Detect", L"Error in OS detection.", [] {});
}

void OS::Initialize()
{
    const LogScope trace(L"kel::OS::Initialize", LogScope::Tracing());
}

}  // namespace kel
