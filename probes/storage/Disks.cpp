#include "probes/storage/Disks.h"

#include <winioctl.h>

#include "diag/Log.h"
#include "diag/SourceFailures.h"
#include "probes/Attempt.h"
#include "probes/storage/DiskAnswers.h"
#include "probes/storage/DiskModel.h"
#include "probes/storage/StorageDescriptor.h"
#include "values/Junk.h"

namespace kel {

namespace {

constexpr const wchar_t* DiskWord = L"PhysicalDrive";
constexpr const wchar_t* DevicePrefix = L"\\\\.\\";
constexpr const wchar_t* DiskInterface = L"{53f56307-b6bf-11d0-94f2-00a0c91efb8b}";
constexpr int DeviceProperty = 0;
constexpr int SeekPenaltyProperty = 7;
constexpr int TrimProperty = 8;
// Not in all compilers' headers.
constexpr DWORD NoSuchDevice = 433;
constexpr DWORD DeviceRemoved = 1617;

/// Whether an error means that the device was removed.
bool IsGone(DWORD error)
{
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND || error == ERROR_DEV_NOT_EXIST ||
           error == NoSuchDevice || error == ERROR_DEVICE_NOT_CONNECTED || error == DeviceRemoved;
}

bool HasNoMedium(DWORD error)
{
    return error == ERROR_NOT_READY || error == ERROR_NO_MEDIA_IN_DRIVE;
}

const wchar_t* GetWord(std::optional<bool> flag)
{
    return !flag ? L"unknown" : *flag ? L"yes" : L"no";
}

/// A disk's answers beside its descriptor, each of which may be missing.
struct OptionalAnswers {
    Hotplug hotplug;
    std::optional<bool> seekPenalty;
};

void TakeDescriptor(const StorageDescriptor& descriptor, const OptionalAnswers& optional, DiskInfo& disk)
{
    disk.model = Name(MakeDiskModel(descriptor.vendor, descriptor.product));
    disk.bus = Name(GetBusName(descriptor.bus));
    disk.isSolidState = IsSolidState(descriptor.bus, optional.seekPenalty);
    disk.isRemovable = IsRemovableDisk(descriptor.bus, descriptor.isRemovable || optional.hotplug.medium,
                                       optional.hotplug.device);
    disk.isVirtual = IsVirtualBus(descriptor.bus);
    if (const std::wstring firmware = TidyText(descriptor.revision); !firmware.empty())
        disk.firmware = Version(firmware);
}

/// Without a descriptor, a removable medium makes the disk removable; a removable cable does not, as the bus
/// is unknown.
void ApplyOptionalAnswers(const OptionalAnswers& optional, DiskInfo& disk)
{
    if (optional.seekPenalty)
        disk.isSolidState = !*optional.seekPenalty;
    if (optional.hotplug.medium)
        disk.isRemovable = true;
}

/// Reads a disk that is open.
/// @return the first error that lost a fact, or 0
DWORD ReadDisk(const StorageDevice& device, DiskInfo& disk)
{
    const StorageAnswer answer = device.AskProperty(DeviceProperty);
    const OptionalAnswers optional = {
        ReadHotplug(device.Ask(IOCTL_STORAGE_GET_HOTPLUG_INFO).bytes).value_or(Hotplug{}),
        ReadStorageFlag(device.AskProperty(SeekPenaltyProperty).bytes)};
    const auto trim = ReadStorageFlag(device.AskProperty(TrimProperty).bytes);
    DWORD error = answer.error;
    const auto descriptor = ReadStorageDescriptor(answer.bytes);
    if (descriptor)
        TakeDescriptor(*descriptor, optional, disk);
    else if (error == ERROR_SUCCESS)
        error = ERROR_INVALID_DATA;
    if (!descriptor)
        ApplyOptionalAnswers(optional, disk);
    WriteLog(LogTrace, L"Disk ", *disk.number, L": bus ", disk.bus.ToString(), L", seek penalty ",
             GetWord(optional.seekPenalty), L", trim ", GetWord(trim));

    if (device.IsAsleep())
        return error;
    const StorageAnswer measured = device.Ask(IOCTL_DISK_GET_DRIVE_GEOMETRY_EX);
    if (const auto geometry = ReadDiskGeometry(measured.bytes))
        disk.capacity = Size(geometry->isFloppy ? 0 : geometry->bytes);
    else if (HasNoMedium(measured.error))
        disk.capacity = Size(0);
    else if (error == ERROR_SUCCESS)
        error = measured.error != ERROR_SUCCESS ? measured.error : ERROR_INVALID_DATA;
    return error;
}

/// The disks of a letter's volume.
/// @param error why none are known
std::vector<std::int32_t> AskVolume(const StorageFunctions& functions, const std::wstring& letter,
                                    DWORD& error)
{
    std::vector<std::int32_t> disks;
    const StorageDevice volume(functions, DevicePrefix + letter);
    const StorageAnswer extents = volume.Ask(IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS);
    error = extents.error;
    for (const std::uint32_t disk : ReadExtentDisks(extents.bytes))
        disks.push_back(static_cast<std::int32_t>(disk));
    if (!disks.empty())
        return disks;
    // A volume without extents may be a partition, whose device number is that of its disk.
    const auto found = ReadDeviceNumber(volume.Ask(IOCTL_STORAGE_GET_DEVICE_NUMBER).bytes);
    if (found && found->type == FILE_DEVICE_DISK)
        disks.push_back(static_cast<std::int32_t>(found->number));
    return disks;
}

}  // namespace

std::vector<DiskInfo> ListDisks(const StorageFunctions& functions)
{
    std::vector<DiskInfo> disks;
    Attempt(L"Error in the list of disks.", [&] {
        for (const std::uint32_t number : ListDeviceNumbers(functions, DiskWord)) {
            DiskInfo disk;
            disk.number = static_cast<std::int32_t>(number);
            const FailureScope scope;
            DWORD error = ERROR_SUCCESS;
            Attempt(L"Error in a disk's answers.", [&] {
                const StorageDevice device(functions, DevicePrefix + (DiskWord + std::to_wstring(number)));
                error = device.IsOpen() ? ReadDisk(device, disk) : device.OpenError();
            });
            if (error != ERROR_SUCCESS)
                WriteLog(LogWarning, L"Disk ", number, L": incomplete answer, error ", error);
            if (error != ERROR_SUCCESS || scope.Found().hasException)
                disk.failures = {{L"disk " + std::to_wstring(number), error}};
            if (!IsGone(error))
                disks.push_back(disk);
        }
    });
    return disks;
}

std::optional<std::int32_t> ReadDiskNumber(const StorageFunctions& functions, const std::wstring& instanceId)
{
    std::optional<std::int32_t> number;
    Attempt(L"Error in a disk's number.", [&] {
        const std::wstring path = MakeInterfacePath(instanceId, DiskInterface);
        if (path.empty())
            return;
        const StorageDevice device(functions, path);
        const auto found = ReadDeviceNumber(device.Ask(IOCTL_STORAGE_GET_DEVICE_NUMBER).bytes);
        if (found && found->type == FILE_DEVICE_DISK)
            number = static_cast<std::int32_t>(found->number);
    });
    return number;
}

std::vector<std::int32_t> ReadVolumeDisks(const StorageFunctions& functions, const std::wstring& letter)
{
    DWORD error = ERROR_SUCCESS;
    return AskVolume(functions, letter, error);
}

std::vector<std::int32_t> ReadWindowsDisks(const StorageFunctions& functions)
{
    std::vector<std::int32_t> disks;
    Attempt(L"Error in the disks of Windows.", [&] {
        const std::wstring letter = GetWindowsLetter(functions.getSystemWindowsDirectory);
        DWORD error = ERROR_SUCCESS;
        if (!letter.empty())
            disks = AskVolume(functions, letter, error);
        if (!letter.empty() && disks.empty()) {
            WriteLog(LogWarning, L"The disks of the Windows volume are unknown, error ", error);
            FailureScope::Note(L"IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS", error);
        }
    });
    return disks;
}

}  // namespace kel
