#include "kit/RecordedOptical.h"

#include <windows.h>

#include <winioctl.h>

#include <algorithm>
#include <array>

#include "kit/Text.h"
#include "platform/ErrorMode.h"
#include "probes/Attempt.h"
#include "probes/storage/DiskAnswers.h"
#include "probes/storage/DiskModel.h"
#include "probes/storage/OpticalDevices.h"
#include "probes/storage/StorageDescriptor.h"
#include "probes/wmi/WMI.h"
#include "service/Utf8.h"

namespace kel::kit {

namespace {

constexpr int DescriptorProperty = 0;
constexpr std::wstring_view KernelPrefix = L"\\Device\\CdRom";

using Lines = std::vector<std::string>;

void AddNumber(std::string& numbers, std::uint64_t number)
{
    numbers += (numbers.empty() ? "" : " ") + Hex(number);
}

/// The profiles of GET CONFIGURATION: a header of 8 bytes, the list's own of 4 with its length in the last
/// one, and 4 bytes for each profile.
/// @return nullopt for a cut list that the lines cannot hold
std::optional<std::string> RecordProfiles(Bytes answer)
{
    constexpr std::size_t Header = 8, Start = 12, Step = 4;
    const std::size_t whole =
        std::min<std::uint64_t>(answer.size(), 4 + ReadBigEndian(answer, 0, 4).value_or(0));
    const Bytes bytes = answer.first(whole);
    const std::size_t count = ReadBigEndian(bytes, Header + 3, 1).value_or(0) / Step;
    if (ReadBigEndian(bytes, Header, 2) != 0U || count == 0)
        return "";
    std::string profiles;
    std::size_t read = 0;
    for (; read < count; ++read) {
        const auto profile = ReadBigEndian(bytes, Start + read * Step, 2);
        if (!profile)
            break;
        AddNumber(profiles, *profile);
    }
    if (read == count)
        return Field("profiles", profiles);
    return read == 1 ? std::optional("|profiles=" + profiles + " 0|odd=cut") : std::nullopt;
}

/// The media types: the device's type, then type and characteristics of each.
std::string RecordMedia(Bytes answer)
{
    constexpr std::size_t Start = 8, Step = 32, Medium = 8, Characteristics = 28;
    std::string media;
    const auto type = ReadLittleEndian(answer, 0, 4);
    const std::uint64_t count = ReadLittleEndian(answer, 4, 4).value_or(0);
    if (type)
        AddNumber(media, *type);
    for (std::size_t place = 0; place < count; ++place) {
        const auto medium = ReadLittleEndian(answer, Start + place * Step + Medium, 4);
        const auto characteristics = ReadLittleEndian(answer, Start + place * Step + Characteristics, 4);
        if (!medium || !characteristics)
            break;
        AddNumber(media, *medium);
        AddNumber(media, *characteristics);
    }
    return Field("media", media);
}

/// The answers of the drive with a path, as fields. One that does not answer, or whose answers end in an
/// exception, is gone.
std::optional<std::string> RecordAnswers(const StorageFunctions& functions, const std::wstring& path,
                                         const std::string& otherNumber, DeviceMasks& masks)
{
    std::optional<std::string> fields = "number=" + otherNumber + "|bus=0|odd=gone";
    Attempt(L"Error in an optical drive's answers.", [&] {
        const StorageDevice device(functions, path);
        const auto number = ReadDeviceNumber(device.Ask(IOCTL_STORAGE_GET_DEVICE_NUMBER).bytes);
        if (!number)
            return;
        const StorageDescriptor descriptor =
            ReadStorageDescriptor(device.AskProperty(DescriptorProperty).bytes).value_or(StorageDescriptor{});
        const std::string name =
            "number=" + std::to_string(number->number) + "|bus=" + std::to_string(descriptor.bus) +
            Field("product", masks.Text(MakeDiskModel(descriptor.vendor, descriptor.product)));
        if (number->type != FILE_DEVICE_CD_ROM && number->type != FILE_DEVICE_DVD) {
            fields = name + "|odd=a disk";
            return;
        }
        fields = RecordProfiles(AskProfiles(functions, path).bytes);
        if (fields)
            fields = name + *fields + RecordMedia(device.Ask(IOCTL_STORAGE_GET_MEDIA_TYPES_EX).bytes);
    });
    return fields;
}

/// What the letters of optical drives lead to.
void RecordLetters(const StorageFunctions& functions, Lines& lines)
{
    for (wchar_t character = L'A'; character <= L'Z'; ++character) {
        const std::wstring letter = {character, L':'};
        std::array<wchar_t, MAX_PATH> target = {};
        if (functions.queryDosDevice(letter.c_str(), target) > 0 &&
            std::wstring_view(target.data()).starts_with(KernelPrefix))
            lines.push_back("letter " + ToUtf8(letter) + "|" + ToUtf8(target.data()));
    }
}

/// The first drive that WMI has; the others are not read.
void RecordWmi(DeviceMasks& masks, Lines& lines)
{
    std::vector<OpticalInfo> drives;
    WMI::Instance().GetCDRomValues(drives);
    for (const OpticalInfo& drive : drives) {
        // Without a letter, WMI has the volume.
        const std::wstring letter = drive.drive.ToString();
        lines.push_back("wmi Win32_CDROMDrive" +
                        Field("PNPDeviceID", masks.Instance(drive.instanceId.ToString())) +
                        Field("Name", masks.Text(drive.name.ToString())) +
                        Field("Drive", letter.size() == 2 ? ToUtf8(letter) : "") +
                        Field("MediaType", masks.Text(drive.mediaType.ToString())));
    }
}

}  // namespace

std::optional<Lines> RecordOpticalDrives(const StorageFunctions& functions, DeviceMasks& masks)
{
    const ErrorMode quiet;
    Lines lines;
    std::vector<std::wstring> instances;
    VisitDevices(RecordedClass::Optical,
                 [&](const SetupDevice& device, HKEY) { instances.push_back(device.InstanceId()); });
    masks.Learn(instances);
    bool isWhole = true;
    const auto add = [&](const std::string& line, const std::optional<std::string>& answers) {
        isWhole = isWhole && answers.has_value();
        lines.push_back(line + answers.value_or(""));
    };
    VisitDevices(RecordedClass::Optical, [&](const SetupDevice& device, HKEY) {
        const std::wstring instance = device.InstanceId();
        add("optical instance=" + masks.Instance(instance) +
                Field("hardware", masks.Text(device.Text(SPDRP_HARDWAREID).ToString())) +
                Field("name", masks.Text(device.DeviceName().ToString())) +
                (device.IsWorking() ? "|" : "|problem=off|"),
            RecordAnswers(functions, MakeOpticalPath(instance), "0", masks));
    });
    for (const std::uint32_t number : ListDeviceNumbers(functions, L"CdRom")) {
        const std::wstring path = L"\\\\.\\CdRom" + std::to_wstring(number);
        add("drive ", RecordAnswers(functions, path, std::to_string(number), masks));
    }
    RecordLetters(functions, lines);
    RecordWmi(masks, lines);
    return isWhole ? std::optional(lines) : std::nullopt;
}

}  // namespace kel::kit
