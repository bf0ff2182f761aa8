#include "detectors/ScsiControllers.h"

#include <algorithm>
#include <string_view>
#include <tuple>

#include "diag/SourceFailures.h"
#include "probes/setup/SetupLib.h"
#include "values/Junk.h"
#include "values/StableSort.h"
#include "values/Text.h"
#include "values/VirtualNames.h"

namespace kel {

namespace {

/// A kind and the first four digits of its class codes, by importance.
struct Kind {
    std::wstring_view classCode;
    const wchar_t* name;
};

constexpr Kind RealKinds[] = {{L"0104", L"RAID"}, {L"0107", L"SAS"}, {L"0100", L"SCSI"}};
constexpr Kind Nvme = {L"0108", L"NVMe"};
constexpr const wchar_t* Virtual = L"virtual";

/// The first class code in ids such as `PCI\VEN_8086&CC_010400`; empty when there is none.
std::wstring GetClassCode(const std::vector<std::wstring>& ids)
{
    constexpr std::wstring_view Mark = L"CC_";
    for (const std::wstring& id : ids) {
        const std::wstring upper = ToUpper(id);
        const std::size_t mark = upper.find(Mark);
        if (mark != std::wstring::npos)
            return upper.substr(mark + Mark.size(), RealKinds[0].classCode.size());
    }
    return {};
}

/// Real ones first, then NVMe, then unknown kinds, then virtual ones; then by the ids.
auto GetRank(const ScsiInfo& controller)
{
    const std::wstring_view kind = controller.kind.ToString();
    const int rank = IsRealController(controller) ? 0 : kind == Nvme.name ? 1 : kind == Virtual ? 3 : 2;
    return std::make_tuple(rank, std::wstring(controller.deviceId.ToString()), controller.instanceId);
}

std::vector<ScsiInfo> ListOfSystem()
{
    return ListScsiControllers(SetupLib::Instance());
}

}  // namespace

std::wstring GetControllerKind(const ScsiInfo& controller)
{
    if (controller.deviceId.IsVirtual() || IsVirtualName(controller.name.ToString()))
        return Virtual;
    const std::wstring code = GetClassCode(controller.compatibleIds);
    for (const Kind& kind : RealKinds) {
        if (code == kind.classCode)
            return kind.name;
    }
    return code == Nvme.classCode ? Nvme.name : L"";
}

bool IsRealController(const ScsiInfo& controller)
{
    const std::wstring_view name = controller.kind.ToString();
    return std::ranges::any_of(RealKinds, [name](const Kind& kind) { return name == kind.name; });
}

std::vector<ScsiInfo> ListScsiControllers(SetupLib& library)
{
    std::vector<ScsiInfo> controllers;
    library.GetScsiInfo(controllers);
    for (ScsiInfo& controller : controllers) {
        controller.name = Name(TidyText(controller.name.ToString()));
        controller.kind = Name(GetControllerKind(controller));
    }
    SortStably(controllers, {}, &GetRank);
    return controllers;
}

ScsiControllers& GetScsiControllers()
{
    static ScsiControllers controllers(&ListOfSystem);
    return controllers;
}

}  // namespace kel
