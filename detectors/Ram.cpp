#include "detectors/Detectors.h"
#include "detectors/Facts.h"
#include "probes/system/Memory.h"

namespace kel {

namespace {

constexpr FactTable Facts(Fact{71063, &MemoryInfo::totalPhysical}, Fact{71381, &MemoryInfo::totalVirtual},
                          Fact{71382, &MemoryInfo::availablePhysical}, Fact{71174, &MemoryInfo::reserved},
                          Fact{71175, &MemoryInfo::reserved}, Fact{73440, &MemoryInfo::installed});

}  // namespace

bool Ram::Detect()
{
    return Detect(MemoryFunctions::OfSystem());
}

bool Ram::Detect(const MemoryFunctions& functions)
{
    return Guarded(L"kel::Ram::Detect", L"Error in Ram detection.",
                   [&functions] { Facts.Store(ReadMemory(functions)); });
}

StoredFacts Ram::ListFacts()
{
    return CollectFacts(Facts);
}

}  // namespace kel
