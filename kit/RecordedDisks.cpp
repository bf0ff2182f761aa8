#include "kit/RecordedDisks.h"

#include <winioctl.h>

#include <comutil.h>
#include <wrl/client.h>

#include <algorithm>
#include <array>
#include <map>
#include <span>

#include "platform/ErrorMode.h"
#include "probes/Variant.h"
#include "probes/storage/DiskAnswers.h"
#include "probes/storage/Disks.h"
#include "probes/storage/StorageDescriptor.h"
#include "probes/wmi/WMI.h"
#include "service/Utf8.h"
#include "values/Text.h"

namespace kel::kit {

namespace {

constexpr int DeviceProperty = 0;
constexpr int SeekPenaltyProperty = 7;
constexpr std::uint32_t UsbBus = 7;
constexpr ULONG MaxDisks = 64;

using Lines = std::vector<std::string>;
using Models = std::map<std::string, std::wstring>;  // by the disk's number

/// The models that WMI has of the disks.
Models ListModels()
{
    Models models;
    Microsoft::WRL::ComPtr<IEnumWbemClassObject> objects;
    if (!WMI::Instance().Query(L"SELECT * FROM Win32_DiskDrive", &objects) || !objects)
        return models;
    std::array<IWbemClassObject*, MaxDisks> found = {};
    ULONG count = 0;
    objects->Next(static_cast<LONG>(WBEM_INFINITE), MaxDisks, found.data(), &count);
    for (IWbemClassObject* const raw : std::span(found).first(std::min(count, MaxDisks))) {
        Microsoft::WRL::ComPtr<IWbemClassObject> object;
        object.Attach(raw);
        _variant_t number;
        _variant_t model;
        if (WMI::GetProperty(object.Get(), L"Index", &number) &&
            WMI::GetProperty(object.Get(), L"Model", &model))
            models[ToUtf8(Trim(ShowVariant(number)))] = ShowVariant(model);
    }
    return models;
}

/// @param isRead whether the answer has the facts; one without them ends too early
void AddFault(const std::string& number, const char* what, const StorageAnswer& answer, bool isRead,
              Lines& lines)
{
    const std::string fault = "fault " + number + "|" + what;
    if (answer.error != ERROR_SUCCESS)
        lines.push_back(fault + "|refused|" + std::to_string(answer.error));
    else if (!isRead)
        lines.push_back(fault + "|cut|" + std::to_string(answer.bytes.size()));
}

/// The answers of a disk that is open.
std::string RecordAnswers(const StorageDevice& device, const std::string& number, DeviceMasks& masks,
                          Lines& faults)
{
    const StorageAnswer described = device.AskProperty(DeviceProperty);
    const auto readDescriptor = ReadStorageDescriptor(described.bytes);
    AddFault(number, "descriptor", described, readDescriptor.has_value(), faults);
    const StorageDescriptor descriptor = readDescriptor.value_or(StorageDescriptor{});
    std::string line =
        Field("bus", std::to_string(descriptor.bus)) + Field("vendor", masks.Text(descriptor.vendor)) +
        Field("product", masks.Text(descriptor.product)) + Field("revision", masks.Text(descriptor.revision));
    const Hotplug hotplug = ReadHotplug(device.Ask(IOCTL_STORAGE_GET_HOTPLUG_INFO).bytes).value_or(Hotplug{});
    const auto seeks = ReadStorageFlag(device.AskProperty(SeekPenaltyProperty).bytes);
    if (seeks)
        line += *seeks ? "|seek=seeks" : "|seek=still";
    std::string odd = descriptor.isRemovable ? "removable " : "";
    odd += hotplug.medium ? "ejects " : "";
    odd += hotplug.device ? "unplugs " : descriptor.bus == UsbBus ? "stays " : "";
    if (device.IsAsleep())
        faults.push_back("fault " + number + "|asleep");
    const StorageAnswer measured =
        device.IsAsleep() ? StorageAnswer{} : device.Ask(IOCTL_DISK_GET_DRIVE_GEOMETRY_EX);
    const auto readGeometry = ReadDiskGeometry(measured.bytes);
    AddFault(number, "geometry", measured, readGeometry || device.IsAsleep(), faults);
    const DiskGeometry geometry = readGeometry.value_or(DiskGeometry{});
    odd += geometry.isFloppy ? "floppy " : "";
    return line + Field("bytes", std::to_string(geometry.bytes)) + Field("odd", odd);
}

}  // namespace

Lines RecordDisks(const DeviceEdges& edges, DeviceMasks& masks)
{
    const ErrorMode quiet;
    Lines lines;
    Lines faults;
    Models models = ListModels();
    for (const std::uint32_t disk : ListDeviceNumbers(edges.storage, L"PhysicalDrive")) {
        const std::string number = std::to_string(disk);
        const StorageDevice device(edges.storage, L"\\\\.\\PhysicalDrive" + std::to_wstring(disk));
        std::string line = "disk number=" + number;
        if (device.IsOpen())
            line += RecordAnswers(device, number, masks, faults);
        else
            faults.push_back("fault " + number + "|open||" + std::to_string(device.OpenError()));
        lines.push_back(line + Field("model", masks.Text(models[number])));
        models.erase(number);
    }
    for (const auto& [number, model] : models)  // of disks that WMI alone lists
        lines.push_back("wmi Win32_DiskDrive|Model=" + masks.Text(model) + "|Index=" + number);
    lines.insert(lines.end(), faults.begin(), faults.end());
    std::vector<std::wstring> instances;
    VisitDevices(RecordedClass::Disks,
                 [&](const SetupDevice& device, HKEY) { instances.push_back(device.InstanceId()); });
    masks.Learn(instances);
    VisitDevices(RecordedClass::Disks, [&](const SetupDevice& device, HKEY) {
        const std::wstring instance = device.InstanceId();
        const auto number = ReadDiskNumber(edges.storage, instance);
        if (device.Text(SPDRP_CLASS).ToString() != std::wstring_view(L"DiskDrive"))
            return;
        lines.push_back("disk-device " + masks.Instance(instance) + "|" +
                        masks.Text(device.Text(SPDRP_HARDWAREID).ToString()) + "|" +
                        masks.Text(device.Text(SPDRP_FRIENDLYNAME).ToString()) + "|" +
                        (number ? std::to_string(*number) : "") + "|" + ContainerOf(device) + "|" +
                        (device.IsWorking() ? "" : "off"));
    });
    std::string windows;
    for (const std::int32_t disk : ReadWindowsDisks(edges.storage))
        windows += (windows.empty() ? "windows " : "|") + std::to_string(disk);
    if (!windows.empty())
        lines.push_back(windows);
    return lines;
}

}  // namespace kel::kit
