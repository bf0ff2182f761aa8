#include "detectors/CpuRules.h"
#include "detectors/Detectors.h"
#include "detectors/Facts.h"
#include "probes/cpu/CPUID.h"
#include "probes/cpu/SystemCpu.h"
#include "probes/system/Registry.h"
#include "probes/wmi/WMI.h"

namespace kel {

namespace {

using I = CpuInfo;

constexpr unsigned IsIntelId = 71256;

constexpr FactTable Facts(Fact{71061, &I::name, L"name"}, Fact{71254, &I::processorCount},
                          Fact{71062, &I::speed, L"speed"}, Fact{71296, &I::vendor, L"vendor"},
                          Fact{71385, &I::stepping}, Fact{71390, &I::family}, Fact{71391, &I::model},
                          Fact{71389, &I::type}, Fact{71386, &I::cpuId}, Fact{71404, &I::cpuIdShort},
                          Fact{71355, &I::platformId}, Fact{71398, &I::reserved1},
                          Fact{71392, &I::updateSignature}, Fact{71257, &I::multiProcessor},
                          Fact{IsIntelId, &I::isIntel}, Fact{71252, &I::isAmd},
                          Fact{71253, &I::cacheDescriptor40}, Fact{71399, &I::reserved2},
                          Fact{71393, &I::chipsetSoftwareVersion}, Fact{NotStored, &I::caption});

}  // namespace

bool CPU::Detect()
{
    return Detect(CPUID::Instance());
}

bool CPU::Detect(CPUID& chip)
{
    return Guarded(L"kel::CPU::Detect", L"Error in CPU detection.", [&chip] {
        CpuInfo wmi;
        CpuInfo cpuid;
        CpuInfo system;
        CpuInfo registry;
        WMI::Instance().GetCpuInfo(wmi);
        chip.GetCpuInfo(cpuid);
        GetSystemCpuInfo(system);
        Registry::Instance().GetCpuInfo(registry);
        if (wmi.isIntel || cpuid.isIntel || system.isIntel || registry.isIntel)
            AddValue(IsIntelId, Exists(true));

        decltype(Facts)::Device merged;
        Facts.Merge(merged, cpuid, L"cpuid");
        Facts.Merge(merged, registry, L"the registry");
        Facts.Merge(merged, wmi, L"WMI");
        Facts.Merge(merged, system, L"the system");
        // The last source decides the rating, also when it has none: what follows counts on starting from it.
        merged.record.ratedSpeed = system.ratedSpeed;
        FinishCpuInfo(merged.record);
        Facts.Store(merged, L"CPU");
    });
}

StoredFacts CPU::ListFacts()
{
    return CollectFacts(Facts);
}

}  // namespace kel
