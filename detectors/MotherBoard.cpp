#include "detectors/MotherBoard.h"

#include "detectors/FillEmpty.h"
#include "probes/Registry.h"
#include "probes/WMI.h"
#include "values/Exists.h"
#include "values/Text.h"

namespace kel {

namespace {

constexpr unsigned ManufacturerId = 71171;
constexpr unsigned ProductId = 71170;
constexpr unsigned VersionId = 71356;
constexpr unsigned AaVersionId = 71437;

}  // namespace

void MergeBoardInfo(BoardInfo& target, const BoardInfo& source)
{
    FillEmpty(target, source, {&BoardInfo::manufacturer, &BoardInfo::product, &BoardInfo::version});
}

bool IsAaVersion(const std::wstring& version)
{
    return ToLower(version).starts_with(L"aa");
}

bool MotherBoard::Detect()
{
    return Guarded(L"kel::MotherBoard::Detect", L"Error in Motherboard detection.", [] {
        BoardInfo registry;
        BoardInfo wmi;
        Registry::Instance().GetBoardInfo(registry);
        WMI::Instance().GetMotherboardValues(wmi);
        BoardInfo merged;
        MergeBoardInfo(merged, registry);
        MergeBoardInfo(merged, wmi);
        AddValue(ManufacturerId, merged.manufacturer);
        AddValue(ProductId, merged.product);
        AddValue(VersionId, merged.version);
        AddValue(AaVersionId, Exists(IsAaVersion(merged.version)));
    });
}

}  // namespace kel
