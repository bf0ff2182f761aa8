#include "kit/RecordedControllers.h"

#include <algorithm>

#include "kit/DeviceEdges.h"
#include "service/Utf8.h"
#include "values/Text.h"

namespace kel::kit {

namespace {

/// The first id with a class code, which gives the controller's kind.
std::wstring FindClassCode(const std::vector<std::wstring>& ids)
{
    const auto found = std::ranges::find_if(
        ids, [](const std::wstring& id) { return ToUpper(id).find(L"CC_") != std::wstring::npos; });
    return found != ids.end() ? *found : L"";
}

}  // namespace

std::optional<std::vector<std::string>> RecordControllers(DeviceMasks& masks)
{
    std::vector<std::wstring> instances;
    VisitDevices(RecordedClass::Controllers,
                 [&](const SetupDevice& device, HKEY) { instances.push_back(device.InstanceId()); });
    masks.Learn(instances);
    std::vector<std::string> lines;
    bool isWhole = true;
    VisitDevices(RecordedClass::Controllers, [&](const SetupDevice& device, HKEY) {
        const std::string id = masks.Text(device.Text(SPDRP_HARDWAREID).ToString());
        const std::string instance = masks.Instance(device.InstanceId());
        isWhole = isWhole && !id.empty();
        lines.push_back("controller " + id + "|" + masks.Text(device.DeviceName().ToString()) + "|" +
                        masks.Text(FindClassCode(device.Texts(SPDRP_COMPATIBLEIDS))) + "|" +
                        masks.Version(device.DriverVersion().ToString()) + "|" +
                        instance.substr(instance.rfind('\\') + 1) + "|" + (device.IsWorking() ? "" : "off"));
    });
    return isWhole ? std::optional(lines) : std::nullopt;
}

}  // namespace kel::kit
