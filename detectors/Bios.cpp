#include "detectors/Bios.h"

#include "detectors/FillEmpty.h"
#include "probes/Registry.h"
#include "probes/WMI.h"
#include "values/Name.h"

namespace kel {

namespace {

constexpr unsigned NameId = 71073;
constexpr unsigned DateId = 71383;
constexpr unsigned ManufacturerId = 71294;
constexpr unsigned VersionId = 71074;

}  // namespace

void MergeBiosInfo(BiosInfo& target, const BiosInfo& source)
{
    FillEmpty(target, source,
              {&BiosInfo::name, &BiosInfo::version, &BiosInfo::date, &BiosInfo::manufacturer});
}

bool Bios::Detect()
{
    return Guarded(L"kel::Bios::Detect", L"Error in Bios detection.", [] {
        BiosInfo registry;
        BiosInfo wmi;
        Registry::Instance().GetBiosInfo(registry);
        WMI::Instance().GetBiosValues(wmi);
        BiosInfo merged;
        MergeBiosInfo(merged, registry);
        MergeBiosInfo(merged, wmi);
        AddValue(NameId, Name(merged.name));
        AddValue(DateId, Name(merged.date));
        AddValue(ManufacturerId, Name(merged.manufacturer));
        AddValue(VersionId, Name(merged.version));
    });
}

}  // namespace kel
