#include "detectors/OpticalDrives.h"

#include <algorithm>

#include "diag/SourceFailures.h"
#include "platform/ErrorMode.h"
#include "probes/setup/SetupLib.h"
#include "probes/storage/DiskModel.h"
#include "probes/storage/OpticalDevices.h"
#include "probes/wmi/WMI.h"
#include "values/StableSort.h"
#include "values/Text.h"
#include "values/VirtualNames.h"

namespace kel {

namespace {

using Drives = std::vector<OpticalInfo>;

/// Parts of the names of virtual drives, which show an image, in upper case.
constexpr std::wstring_view VirtualNames[] = {L"VIRTUAL", L"CLONEDRIVE", L"DTSOFT", L"AXV CD", L"IMDISK"};

std::wstring GetKey(const OpticalInfo& drive)
{
    return ToUpper(drive.instanceId.ToString());
}

bool IsSameDrive(const OpticalInfo& one, const OpticalInfo& other)
{
    return one.instanceId.HasValue() && GetKey(one) == GetKey(other);
}

Drives ListSetupDrives()
{
    Drives drives;
    SetupLib::Instance().GetCDRomInfo(drives);
    for (OpticalInfo& drive : drives)
        drive.name = Name(TidyDiskModel(drive.name.ToString()));
    return drives;
}

bool IsLetter(const std::wstring& text)
{
    return text.size() == 2 && text[0] >= L'A' && text[0] <= L'Z' && text[1] == L':';
}

Drives ListWmiDrives()
{
    Drives drives;
    WMI::Instance().GetCDRomValues(drives);
    for (OpticalInfo& drive : drives) {
        drive.name = Name(TidyDiskModel(drive.name.ToString()));
        drive.deviceId = DeviceID(drive.instanceId.ToString());
        if (!IsLetter(drive.drive.ToString()))  // WMI names the volume where there is no letter
            drive.drive = Name();
    }
    return drives;
}

bool HasVirtualName(const OpticalInfo& drive)
{
    const std::wstring name = ToUpper(drive.name.ToString());
    return IsVirtualName(name) || std::ranges::any_of(VirtualNames, [&name](std::wstring_view part) {
               return name.find(part) != std::wstring::npos;
           });
}

/// Fills the facts that follow from the merged record. Name and media type count only where the drive did not
/// report all its profiles.
void Finish(OpticalInfo& drive)
{
    if (drive.abilities.known != AllAbilities) {
        const bool wasKnown = drive.abilities.HasValue();
        drive.abilities.Raise(GetAbilitiesOfName(drive.name.ToString()) |
                              GetAbilitiesOfName(drive.mediaType.ToString()));
        if (!wasKnown && drive.abilities.HasValue())
            drive.abilitySource = L"its name and media type";
    }
    drive.writesCds = drive.abilities.Has(WritesCds);
    if (drive.deviceId.IsVirtual() || HasVirtualName(drive))
        drive.isVirtual = true;
    else if (!drive.isVirtual && (drive.deviceId.HasValue() || drive.name.HasValue()))
        drive.isVirtual = false;
}

/// Adds the found drives whose letters no listed drive has; all of them when none is listed.
void AddUnlisted(Drives& drives, const Drives& found)
{
    const bool isEmpty = drives.empty();
    for (const OpticalInfo& drive : found) {
        const bool isListed = std::ranges::any_of(
            drives, [&drive](const OpticalInfo& other) { return other.drive == drive.drive; });
        if (isEmpty || (drive.drive.HasValue() && !isListed))
            drives.push_back(drive);
    }
}

/// Real drives first, then by the ids and the letter.
auto GetRank(const OpticalDrive& drive)
{
    return std::make_tuple(!IsRealDrive(drive), std::wstring(drive.record.deviceId.ToString()),
                           GetKey(drive.record), std::wstring(drive.record.drive.ToString()));
}

std::vector<OpticalDrive> ListOfSystem()
{
    return ListOpticalDrives(StorageFunctions::OfSystem());
}

}  // namespace

std::vector<OpticalDrive> ListOpticalDrives(const StorageFunctions& functions)
{
    const ErrorMode quiet;
    std::vector<OpticalDrive> drives;
    const Drives devices = ListSetupDrives();
    OpticalFacts.Join(drives, devices, L"the Setup API", &IsSameDrive);
    OpticalFacts.Join(drives, ListWmiDrives(), L"WMI", &IsSameDrive);
    std::erase_if(drives, [](const OpticalDrive& drive) { return drive.record.isOff; });
    // The drives' own answers, in the order of the list.
    Drives answers;
    for (const auto& [drive, sources] : drives) {
        answers.push_back(ReadOpticalDrive(functions, drive.instanceId.ToString(), drive.drive.ToString()));
        if (!answers.back().drive.HasValue())
            answers.back().drive = drive.drive;
    }
    if (devices.empty())  // WMI lists at most one
        AddUnlisted(answers, ListOpticalDevices(functions));
    drives.resize(answers.size());
    for (std::size_t place = 0; place < drives.size(); ++place) {
        OpticalFacts.Merge(drives[place], answers[place], L"the storage functions");
        drives[place].record.abilities = answers[place].abilities;
        drives[place].record.abilitySource = answers[place].abilitySource;
        Finish(drives[place].record);
    }
    SortStably(drives, {}, &GetRank);
    return drives;
}

OpticalDrives& GetOpticalDrives()
{
    static OpticalDrives drives(&ListOfSystem);
    return drives;
}

}  // namespace kel
