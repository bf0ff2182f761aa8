#include "detectors/CpuRules.h"
#include "detectors/Detectors.h"
#include "detectors/Facts.h"
#include "probes/cpu/CPUID.h"
#include "probes/cpu/SystemCpu.h"
#include "probes/system/Registry.h"
#include "probes/wmi/WMI.h"

namespace kel {

namespace {

constexpr unsigned IsIntelId = 71256;

constexpr FactTable Facts(Fact{71061, &CpuInfo::name, L"name"}, Fact{71254, &CpuInfo::processorCount},
                          Fact{71062, &CpuInfo::speed, L"speed"}, Fact{71296, &CpuInfo::vendor, L"vendor"},
                          Fact{71385, &CpuInfo::stepping}, Fact{71390, &CpuInfo::family},
                          Fact{71391, &CpuInfo::model}, Fact{71389, &CpuInfo::type},
                          Fact{71386, &CpuInfo::cpuId}, Fact{71404, &CpuInfo::cpuIdShort},
                          Fact{71355, &CpuInfo::platformId}, Fact{71398, &CpuInfo::reserved1},
                          Fact{71392, &CpuInfo::updateSignature}, Fact{71257, &CpuInfo::multiProcessor},
                          Fact{IsIntelId, &CpuInfo::isIntel}, Fact{71252, &CpuInfo::isAmd},
                          Fact{71253, &CpuInfo::cacheDescriptor40}, Fact{71399, &CpuInfo::reserved2},
                          Fact{71393, &CpuInfo::chipsetSoftwareVersion}, Fact{NotStored, &CpuInfo::caption},
                          Fact{73420, &CpuInfo::cores}, Fact{73421, &CpuInfo::threads},
                          Fact{73422, &CpuInfo::packages}, Fact{73423, &CpuInfo::efficientCores},
                          Fact{73424, &CpuInfo::hasSse42}, Fact{73425, &CpuInfo::hasAvx},
                          Fact{73426, &CpuInfo::hasAvx2}, Fact{73427, &CpuInfo::hasAvx512},
                          Fact{73428, &CpuInfo::hasAes}, Fact{73429, &CpuInfo::level},
                          Fact{73430, &CpuInfo::isVirtualizationOn}, Fact{73431, &CpuInfo::isVirtualMachine},
                          Fact{73432, &CpuInfo::largestCache}, Fact{NotStored, &CpuInfo::hasHypervisor},
                          Fact{NotStored, &CpuInfo::firmwareVirtualizes});

}  // namespace

bool CPU::Detect()
{
    return Detect(CPUID::Instance(), CpuFunctions::OfSystem());
}

bool CPU::Detect(CPUID& chip, const CpuFunctions& functions)
{
    return Guarded(L"kel::CPU::Detect", L"Error in CPU detection.", [&] {
        CpuInfo wmi;
        CpuInfo cpuid;
        CpuInfo system;
        CpuInfo registry;
        WMI::Instance().GetCpuInfo(wmi);
        chip.GetCpuInfo(cpuid);
        GetSystemCpuInfo(functions, system);
        GetTopology(functions, system);
        Registry::Instance().GetCpuInfo(registry);
        if (wmi.isIntel || cpuid.isIntel || system.isIntel || registry.isIntel)
            AddValue(IsIntelId, Exists(true));

        decltype(Facts)::Device merged;
        Facts.Merge(merged, cpuid, L"cpuid");
        Facts.Merge(merged, registry, L"the registry");
        Facts.Merge(merged, wmi, L"WMI");
        Facts.Merge(merged, system, L"the system");
        // The last source decides the rating, even if it has none: FinishCpuInfo starts from it.
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
