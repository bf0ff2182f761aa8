#include "probes/storage/OpticalDevices.h"

#include <winioctl.h>

#include <array>

#include "diag/Log.h"
#include "probes/Attempt.h"
#include "probes/storage/DiskAnswers.h"
#include "probes/storage/DiskModel.h"
#include "probes/storage/StorageDescriptor.h"

namespace kel {

namespace {

constexpr const wchar_t* DeviceWord = L"CdRom";
constexpr const wchar_t* OpticalPrefix = L"\\\\.\\";
constexpr std::wstring_view KernelPrefix = L"\\Device\\";
constexpr const wchar_t* OpticalInterface = L"{53f56308-b6bf-11d0-94f2-00a0c91efb8b}";
constexpr int DescriptorProperty = 0;

// Not in all compilers' headers.
constexpr DWORD GetConfiguration = CTL_CODE(FILE_DEVICE_CD_ROM, 0x16, METHOD_BUFFERED, FILE_READ_ACCESS);
static_assert(GetConfiguration == 0x24058);
constexpr DWORD OneFeature = 2;
struct ConfigurationQuery {
    DWORD feature;
    DWORD requestType;
    void* reserved[2];
};
static_assert(sizeof(ConfigurationQuery) == 24);

/// The device of a drive letter, such as "\Device\CdRom0". Nothing is opened for it.
std::wstring GetTarget(const StorageFunctions& functions, const std::wstring& letter)
{
    std::array<wchar_t, MAX_PATH> target = {};
    return functions.queryDosDevice(letter.c_str(), target) > 0 ? std::wstring(target.data()) : L"";
}

/// The letter of the drive with a number; empty when it has none.
std::wstring FindLetter(const StorageFunctions& functions, std::uint32_t number)
{
    const std::wstring device = std::wstring(KernelPrefix) + DeviceWord + std::to_wstring(number);
    for (wchar_t character = L'A'; character <= L'Z'; ++character) {
        std::wstring letter = {character, L':'};
        if (GetTarget(functions, letter) == device)
            return letter;
    }
    return {};
}

/// The profiles of a drive that this user may open for reading; else its media types, which need no rights.
void ReadAbilities(const StorageFunctions& functions, const std::wstring& path, const StorageDevice& device,
                   OpticalInfo& drive)
{
    drive.abilities = ReadProfiles(AskProfiles(functions, path).bytes);
    if (drive.abilities.HasValue()) {
        drive.abilitySource = L"the profile list";
        return;
    }
    drive.abilities = ReadMediaTypes(device.Ask(IOCTL_STORAGE_GET_MEDIA_TYPES_EX).bytes);
    if (drive.abilities.HasValue())
        drive.abilitySource = L"the media types";
}

/// @return whether the path leads to an optical drive
bool ReadDevice(const StorageFunctions& functions, const std::wstring& path, OpticalInfo& drive)
{
    const StorageDevice device(functions, path);
    const auto number = ReadDeviceNumber(device.Ask(IOCTL_STORAGE_GET_DEVICE_NUMBER).bytes);
    if (!number || (number->type != FILE_DEVICE_CD_ROM && number->type != FILE_DEVICE_DVD))
        return false;
    drive.drive = Name(FindLetter(functions, number->number));
    if (const auto descriptor = ReadStorageDescriptor(device.AskProperty(DescriptorProperty).bytes)) {
        drive.name = Name(MakeDiskModel(descriptor->vendor, descriptor->product));
        drive.isVirtual = IsVirtualBus(descriptor->bus);
    }
    ReadAbilities(functions, path, device, drive);
    return true;
}

}  // namespace

std::wstring MakeOpticalPath(const std::wstring& instanceId)
{
    return MakeInterfacePath(instanceId, OpticalInterface);
}

StorageAnswer AskProfiles(const StorageFunctions& functions, const std::wstring& path)
{
    const ConfigurationQuery query = {0, OneFeature, {}};
    const StorageDevice readable(functions, path, GENERIC_READ);
    return readable.Ask(GetConfiguration, std::as_bytes(std::span(&query, 1)));
}

OpticalInfo ReadOpticalDrive(const StorageFunctions& functions, const std::wstring& instanceId,
                             const std::wstring& letter)
{
    OpticalInfo drive;
    Attempt(L"Error in an optical drive's answers.", [&] {
        const std::wstring path = MakeOpticalPath(instanceId);
        if (!path.empty() && ReadDevice(functions, path, drive))
            return;
        const std::wstring target = letter.empty() ? L"" : GetTarget(functions, letter);
        const std::wstring device =
            target.starts_with(KernelPrefix) ? target.substr(KernelPrefix.size()) : L"";
        if (!device.starts_with(DeviceWord) || !ReadDevice(functions, OpticalPrefix + device, drive)) {
            WriteLog(LogWarning, L"An optical drive does not answer.");
            drive.failures = {{letter.empty() ? L"optical drive" : L"optical drive " + letter, 0}};
        }
    });
    return drive;
}

std::vector<OpticalInfo> ListOpticalDevices(const StorageFunctions& functions)
{
    std::vector<OpticalInfo> drives;
    Attempt(L"Error in the list of optical drives.", [&] {
        for (const std::uint32_t number : ListDeviceNumbers(functions, DeviceWord)) {
            OpticalInfo drive;
            if (ReadDevice(functions, OpticalPrefix + (DeviceWord + std::to_wstring(number)), drive))
                drives.push_back(drive);
        }
    });
    return drives;
}

}  // namespace kel
