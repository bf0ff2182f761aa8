#include "detectors/CPU.h"

#include "detectors/CpuRules.h"
#include "probes/CPUID.h"
#include "probes/Registry.h"
#include "probes/SystemCpu.h"
#include "probes/WMI.h"
#include "values/Exists.h"

namespace kel {

namespace {

constexpr unsigned NameId = 71061;
constexpr unsigned ProcessorCountId = 71254;
constexpr unsigned SpeedId = 71062;
constexpr unsigned VendorId = 71296;
constexpr unsigned SteppingId = 71385;
constexpr unsigned FamilyId = 71390;
constexpr unsigned ModelId = 71391;
constexpr unsigned TypeId = 71389;
constexpr unsigned CpuIdId = 71386;
constexpr unsigned CpuIdShortId = 71404;
constexpr unsigned PlatformIdId = 71355;
constexpr unsigned Reserved1Id = 71398;
constexpr unsigned Reserved2Id = 71399;
constexpr unsigned UpdateSignatureId = 71392;
constexpr unsigned ChipsetSoftwareVersionId = 71393;
constexpr unsigned MultiProcessorId = 71257;
constexpr unsigned IsIntelId = 71256;
constexpr unsigned IsAmdId = 71252;
constexpr unsigned CacheDescriptor40Id = 71253;

}  // namespace

bool CPU::Detect()
{
    return Guarded(L"kel::CPU::Detect", L"Error in CPU detection.", [] {
        CpuInfo wmi;
        CpuInfo cpuid;
        CpuInfo system;
        CpuInfo registry;
        WMI::Instance().GetCpuInfo(wmi);
        CPUID::Instance().GetCpuInfo(cpuid);
        GetSystemCpuInfo(system);
        Registry::Instance().GetCpuInfo(registry);
        if (wmi.isIntel || cpuid.isIntel || system.isIntel || registry.isIntel)
            AddValue(IsIntelId, Exists(true));

        CpuInfo merged;
        for (const CpuInfo* source : {&cpuid, &registry, &wmi, &system})
            MergeCpuInfo(merged, *source);
        FinishCpuInfo(merged);

        AddValue(NameId, merged.name);
        AddValue(ProcessorCountId, merged.processorCount);
        AddValue(SpeedId, merged.speed);
        AddValue(VendorId, merged.vendor);
        AddValue(SteppingId, merged.stepping);
        AddValue(FamilyId, merged.family);
        AddValue(ModelId, merged.model);
        AddValue(TypeId, merged.type);
        AddValue(CpuIdId, merged.cpuId);
        AddValue(CpuIdShortId, merged.cpuIdShort);
        AddValue(PlatformIdId, merged.platformId);
        AddValue(Reserved1Id, merged.reserved1);
        AddValue(UpdateSignatureId, merged.updateSignature);
        AddValue(MultiProcessorId, Exists(merged.multiProcessor));
        AddValue(IsIntelId, Exists(merged.isIntel));
        AddValue(IsAmdId, Exists(merged.isAmd));
        AddValue(CacheDescriptor40Id, Exists(merged.cacheDescriptor40));
        AddValue(Reserved2Id, merged.reserved2);
        AddValue(ChipsetSoftwareVersionId, merged.chipsetSoftwareVersion);
    });
}

}  // namespace kel
