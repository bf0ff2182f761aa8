#include "support/PlantedDevice.h"

#include <devpropdef.h>

#include <iterator>
#include <string_view>

#include "platform/Library.h"
#include "platform/RegistryValue.h"
#include "support/RequireWine.h"
#include "support/Split.h"
#include "support/TestFolder.h"

namespace kel::test {

namespace {

/// The vendor of planted devices, which no probe reads.
constexpr wchar_t Mark[] = L"KelTests";

void Remove(HDEVINFO set, SP_DEVINFO_DATA& device)
{
    SetupDiDeleteDevRegKey(set, &device, DICS_FLAG_GLOBAL, 0, DIREG_BOTH);
    SetupDiRemoveDevice(set, &device);
}

/// Removes the devices that an interrupted test left: the Setup API keeps them for later processes.
bool RemoveLeftDevices()
{
    const HDEVINFO set = SetupDiGetClassDevsW(nullptr, nullptr, nullptr, DIGCF_ALLCLASSES);
    SP_DEVINFO_DATA device = {};
    device.cbSize = sizeof(device);
    for (DWORD index = 0; SetupDiEnumDeviceInfo(set, index, &device); ++index) {
        wchar_t vendor[std::size(Mark)] = {};
        if (SetupDiGetDeviceRegistryPropertyW(set, &device, SPDRP_MFG, nullptr,
                                              reinterpret_cast<BYTE*>(vendor), sizeof(vendor), nullptr) &&
            std::wstring_view(vendor) == Mark)
            Remove(set, device);
    }
    return SetupDiDestroyDeviceInfoList(set);
}

/// SetupDiSetDevicePropertyW, which not every platform's headers declare.
auto SetProperty()
{
    using Function =
        BOOL WINAPI(HDEVINFO, SP_DEVINFO_DATA*, const DEVPROPKEY*, ULONG, const BYTE*, DWORD, DWORD);
    return FindLoadedFunction<Function>(L"setupapi.dll", "SetupDiSetDevicePropertyW");
}

const bool IsClean = IsWine() && RemoveLeftDevices();

}  // namespace

PlantedDevice::PlantedDevice(DeviceClass deviceClass, const wchar_t* instanceId)
    : PlantedDevice(GUID{deviceClass, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}},
                    instanceId)
{
}

PlantedDevice::PlantedDevice(const GUID& guid, const wchar_t* instanceId)
{
    RequireWine();
    set = SetupDiCreateDeviceInfoList(nullptr, nullptr);
    device.cbSize = sizeof(device);
    SetupDiCreateDeviceInfoW(set, instanceId != nullptr ? instanceId : L"KELTEST", &guid, nullptr, nullptr,
                             instanceId != nullptr ? 0 : DICD_GENERATE_ID, &device);
    With(SPDRP_MFG, Mark);
    SetupDiRegisterDeviceInfo(set, &device, 0, nullptr, nullptr, nullptr);
}

PlantedDevice::~PlantedDevice()
{
    EndIfInterrupted();
    Remove(set, device);
    SetupDiDestroyDeviceInfoList(set);
}

PlantedDevice& PlantedDevice::With(DWORD property, const std::wstring& text)
{
    SetupDiSetDeviceRegistryPropertyW(set, &device, property, reinterpret_cast<const BYTE*>(text.c_str()),
                                      static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    return *this;
}

PlantedDevice& PlantedDevice::InState(const std::wstring& state)
{
    constexpr DEVPROPKEY ProblemCode = {
        {0x4340a6c5, 0x93fa, 0x4706, {0x97, 0x2c, 0x7b, 0x64, 0x80, 0x08, 0xa5, 0xa7}}, 3};
    const DWORD number = state == L"off" ? 1 : static_cast<DWORD>(NumberOf(state));
    const auto* const bytes = reinterpret_cast<const BYTE*>(&number);
    if (state == L"off")
        SetupDiSetDeviceRegistryPropertyW(set, &device, SPDRP_CONFIGFLAGS, bytes, sizeof(number));
    else if (!state.empty())
        SetProperty()(set, &device, &ProblemCode, DEVPROP_TYPE_UINT32, bytes, sizeof(number), 0);
    return *this;
}

PlantedDevice& PlantedDevice::InContainer(const std::wstring& container)
{
    if (container.empty())
        return *this;
    return With(0x24, container == L"own" ? L"{00000000-0000-0000-ffff-ffffffffffff}"
                                          : L"{3f2a1c5e-0b7d-5a44-9c1e-0a1b2c3d4e5f}");
}

PlantedDevice& PlantedDevice::Driver(const wchar_t* name, ULONGLONG number, const wchar_t* subkey)
{
    return Write(DIREG_DRV, name, REG_BINARY, &number, sizeof(number), subkey);
}

PlantedDevice& PlantedDevice::Write(DWORD kind, const wchar_t* name, const std::wstring& text,
                                    const wchar_t* subkey)
{
    return Write(kind, name, REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t), subkey);
}

PlantedDevice& PlantedDevice::Write(DWORD kind, const wchar_t* name, DWORD type, const void* data,
                                    std::size_t size, const wchar_t* subkey)
{
    const OwnedKey key(SetupDiCreateDevRegKeyW(set, &device, DICS_FLAG_GLOBAL, 0, kind, nullptr, nullptr));
    RegSetKeyValueW(key.get(), subkey, name, type, data, static_cast<DWORD>(size));
    return *this;
}

}  // namespace kel::test
