#include "kit/DeviceEdges.h"

#include <setupapi.h>

#include "probes/setup/SetupEntryPoints.h"
#include "probes/setup/SetupLib.h"

namespace kel::kit {

DeviceEdges DeviceEdges::OfSystem()
{
    return {StorageFunctions::OfSystem(), VolumeFunctions::OfSystem(),   NetworkFunctions::OfSystem(),
            DisplayFunctions::OfSystem(), GraphicsFunctions::OfSystem(), SoundFunctions::OfSystem()};
}

void VisitDevices(RecordedClass kind,
                  const std::function<void(const SetupDevice& device, HKEY driver)>& visit)
{
    SetupEntryPoints functions;
    if (!SetupEntryPoints::Load(functions) || !functions.IsComplete())
        return;
    const GUID guid = {
        static_cast<DWORD>(kind), 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}};
    const HDEVINFO opened = functions.getClassDevs(&guid, nullptr, nullptr, DIGCF_PRESENT);
    if (opened == INVALID_HANDLE_VALUE)
        return;
    const OwnedDeviceSet set(opened, {functions.destroyDeviceInfoList});
    SP_DEVINFO_DATA found = {};
    found.cbSize = sizeof(found);
    for (DWORD index = 0; functions.enumDeviceInfo(set.get(), index, &found); ++index) {
        const SetupDevice device(functions, set.get(), found);
        std::wstring place;
        OwnedKey driver;
        if (device.GetDeviceProperty(SPDRP_DRIVER, place))
            driver = OpenKey(HKEY_LOCAL_MACHINE,
                             (L"SYSTEM\\CurrentControlSet\\Control\\Class\\" + place).c_str(), KEY_READ);
        visit(device, driver.get());
    }
}

std::wstring DriverText(HKEY driver, const wchar_t* name)
{
    const std::optional<RegistryValue> value = driver != nullptr ? ReadValue(driver, name) : std::nullopt;
    return value && (value->IsString() || value->type == REG_MULTI_SZ) ? value->Text() : std::wstring();
}

std::string Field(const char* name, const std::string& text)
{
    return text.empty() ? text : std::string("|") + name + "=" + text;
}

std::string ContainerOf(const SetupDevice& device)
{
    const std::optional<bool> isInternal = device.IsInternal();
    return !isInternal ? "" : *isInternal ? "own" : "other";
}

}  // namespace kel::kit
