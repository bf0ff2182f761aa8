#include "detectors/Detectors.h"
#include "detectors/Facts.h"
#include "probes/system/Registry.h"
#include "probes/wmi/WMI.h"
#include "values/Text.h"

namespace kel {

namespace {

constexpr FactTable Facts(Fact{71171, &BoardInfo::manufacturer}, Fact{71170, &BoardInfo::product},
                          Fact{71356, &BoardInfo::version, L"version"}, Fact{71437, &BoardInfo::hasAaVersion},
                          Fact{73460, &BoardInfo::systemVendor}, Fact{73461, &BoardInfo::systemModel});

}  // namespace

bool MotherBoard::Detect()
{
    return Guarded(L"kel::MotherBoard::Detect", L"Error in Motherboard detection.", [] {
        BoardInfo registry;
        BoardInfo wmi;
        Registry::Instance().GetBoardInfo(registry);
        WMI::Instance().GetMotherboardValues(wmi);
        decltype(Facts)::Device merged;
        Facts.Merge(merged, registry, L"the registry");
        Facts.Merge(merged, wmi, L"WMI");
        merged.record.hasAaVersion = ToLower(merged.record.version).starts_with(L"aa");
        Facts.Store(merged, L"MotherBoard");
    });
}

StoredFacts MotherBoard::ListFacts()
{
    return CollectFacts(Facts);
}

}  // namespace kel
