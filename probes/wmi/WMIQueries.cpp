// The six queries of the WMI probe: the properties that fill the members of each record.
#include <comutil.h>

#include <variant>

#include "diag/Log.h"
#include "diag/LogScope.h"
#include "diag/SourceFailures.h"
#include "probes/Variant.h"
#include "probes/wmi/WMI.h"
#include "values/Junk.h"
#include "values/Text.h"

namespace kel {

namespace {

constexpr ULONG FirstOnly = 1;
constexpr ULONG AtMost = 200;

/// A property that is read only for the log.
using Ignored = std::monostate;

/// A property, and the member that takes it: a text, a signed number, or a clock speed in MHz.
template <typename Record>
struct Row {
    const wchar_t* property;
    std::variant<std::wstring Record::*, Name Record::*, std::optional<std::int32_t> Record::*,
                 Speed Record::*, Ignored>
        member;
    const wchar_t* logged = nullptr;  ///< the log's words before the text that was read
};

constexpr Row<CpuInfo> ProcessorRows[] = {{L"Name", &CpuInfo::name, L"WMI CPU: "},
                                          {L"Manufacturer", &CpuInfo::vendor},
                                          {L"MaxClockSpeed", &CpuInfo::speed},
                                          {L"Caption", &CpuInfo::caption}};
constexpr Row<DiskInfo> DiskRows[] = {
    {L"Model", &DiskInfo::model}, {L"Name", &DiskInfo::deviceName}, {L"Index", &DiskInfo::number}};
// Support compares "Version" with the stored one; "name" has always been in lower case.
constexpr Row<BiosInfo> BiosRows[] = {{L"Version", Ignored()},
                                      {L"name", &BiosInfo::name},
                                      {L"Manufacturer", &BiosInfo::manufacturer},
                                      {L"SMBIOSBIOSVersion", &BiosInfo::version}};
constexpr Row<SoundInfo> SoundRows[] = {{L"Name", &SoundInfo::name}, {L"DeviceID", &SoundInfo::instanceId}};
constexpr Row<BoardInfo> BoardRows[] = {{L"Manufacturer", &BoardInfo::manufacturer},
                                        {L"Product", &BoardInfo::product},
                                        {L"Version", &BoardInfo::version}};
constexpr Row<OpticalInfo> OpticalRows[] = {{L"Name", &OpticalInfo::name},
                                            {L"PNPDeviceID", &OpticalInfo::instanceId},
                                            {L"Drive", &OpticalInfo::drive},
                                            {L"MediaType", &OpticalInfo::mediaType}};

void Take(const VARIANT& value, std::wstring& text)
{
    text = VariantText(value);
}

void Take(const VARIANT& value, Name& text)
{
    text = Name(VariantText(value));
}

void Take(const VARIANT& value, std::optional<std::int32_t>& number)
{
    number = VariantSigned(value);
}

void Take(const VARIANT& value, Speed& speed)
{
    speed.Initialize((std::to_wstring(VariantUnsigned(value)) + L" MHz").c_str());
}

/// Fills a record from the properties that an object has.
/// @throws _com_error for a property that cannot be converted; members that were filled before stay filled
template <typename Record, std::size_t Count>
void Fill(IWbemClassObject* object, const Row<Record> (&rows)[Count], Record& record)
{
    for (const Row<Record>& row : rows) {
        _variant_t value;
        if (!WMI::GetProperty(object, row.property, &value))
            continue;
        std::visit(
            [&]<typename Member>(Member member) {
                if constexpr (!std::is_same_v<Member, Ignored>)
                    Take(value, record.*member);
            },
            row.member);
        if (row.logged != nullptr)
            WriteLog(LogTrace, row.logged, VariantText(value));
    }
}

}  // namespace

/// Passes each object of a query to a function. A property that cannot be converted ends the query.
/// @param errorLine null for a query without a line: its detector has other sources
/// @return whether an object was read
template <typename TakeObject>
bool WMI::ForEach(const wchar_t* wql, ULONG count, const wchar_t* errorLine, TakeObject take)
{
    bool isRead = false;
    try {
        if (!initialised) {
            NoteFailure(wql, connected);
            return isRead;
        }
        for (const auto& object : Read(wql, count)) {
            isRead = true;
            take(object.Get());
        }
    } catch (...) {
        FailureScope::NoteException();
        if (errorLine != nullptr)
            ReportFailure(LogError, errorLine);
    }
    return isRead;
}

bool WMI::GetCpuInfo(CpuInfo& info)
{
    const LogScope trace(L"kel::WMI::GetCpuInfo");
    ForEach(L"SELECT * FROM Win32_Processor", FirstOnly, L"Error in WMI CPU detection.",
            [&](IWbemClassObject* object) { Fill(object, ProcessorRows, info); });
    return initialised;
}

bool WMI::GetHardDriveValues(std::vector<DiskInfo>& drives)
{
    ForEach(L"SELECT * FROM Win32_DiskDrive", AtMost, nullptr,
            [&](IWbemClassObject* object) { Fill(object, DiskRows, drives.emplace_back()); });
    return initialised;
}

bool WMI::GetBiosValues(BiosInfo& info)
{
    const LogScope trace(L"kel::WMI::GetBiosValues");
    return ForEach(L"SELECT * FROM Win32_BIOS", FirstOnly, nullptr,
                   [&](IWbemClassObject* object) { Fill(object, BiosRows, info); });
}

bool WMI::GetSoundValues(SoundInfo& info)
{
    return ForEach(L"SELECT * FROM Win32_SoundDevice", FirstOnly, nullptr, [&](IWbemClassObject* object) {
        Fill(object, SoundRows, info);
        info.instanceId = ToUpper(info.instanceId);
        info.deviceId = DeviceID(info.instanceId);
        info.name = info.HasChosenName() ? Name() : Name(TidyText(info.name.ToString()));
    });
}

bool WMI::GetMotherboardValues(BoardInfo& info)
{
    return ForEach(L"SELECT * FROM Win32_BaseBoard", AtMost, L"Error in WMI::GetMotherboardValues.",
                   [&](IWbemClassObject* object) { Fill(object, BoardRows, info); });
}

bool WMI::GetCDRomValues(std::vector<OpticalInfo>& drives)
{
    return ForEach(L"SELECT * FROM Win32_CDROMDrive", FirstOnly, L"Error in WMI GetCDRomValues.",
                   [&](IWbemClassObject* object) { Fill(object, OpticalRows, drives.emplace_back()); });
}

}  // namespace kel
