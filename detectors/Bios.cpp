#include "detectors/Detectors.h"
#include "detectors/Facts.h"
#include "probes/system/Firmware.h"
#include "probes/system/Registry.h"
#include "probes/wmi/WMI.h"

namespace kel {

namespace {

constexpr FactTable Facts(Fact{71073, &BiosInfo::name}, Fact{71383, &BiosInfo::date},
                          Fact{71294, &BiosInfo::manufacturer}, Fact{71074, &BiosInfo::version, L"version"});

constexpr FactTable FirmwareFacts(Fact{73450, &FirmwareInfo::kind}, Fact{73451, &FirmwareInfo::hasSecureBoot},
                                  Fact{73452, &FirmwareInfo::hasTpm}, Fact{73453, &FirmwareInfo::tpmVersion});

}  // namespace

bool Bios::Detect()
{
    return Detect(FirmwareFunctions::OfSystem());
}

bool Bios::Detect(const FirmwareFunctions& functions)
{
    return Guarded(L"kel::Bios::Detect", L"Error in Bios detection.", [&functions] {
        BiosInfo registry;
        BiosInfo wmi;
        Registry::Instance().GetBiosInfo(registry);
        WMI::Instance().GetBiosValues(wmi);
        decltype(Facts)::Device merged;
        Facts.Merge(merged, registry, L"the registry");
        Facts.Merge(merged, wmi, L"WMI");
        Facts.Store(merged, L"Bios");
        FirmwareFacts.Store(ReadFirmware(functions));
    });
}

StoredFacts Bios::ListFacts()
{
    return CollectFacts(Facts, FirmwareFacts);
}

}  // namespace kel
