#include "detectors/EmptyValues.h"

#include <algorithm>

#include "diag/Log.h"
#include "run/store/Session.h"
#include "verdict/Catalogue.h"

namespace kel {

namespace {

/// How a failure's source begins, and what the catalogue calls the sources that it stands for. A source that
/// is not listed is a function, which the catalogue names as it is.
struct SourceWords {
    const wchar_t* start;
    const char* words[4];  // null behind the last one
};

constexpr SourceWords Sources[] = {
    {L"WMI", {"WMI"}},
    {L"registry", {"registry", "key", "EDID"}},
    {L"Setup API SetupDiOpenDevRegKey", {"driver"}},
    {L"Setup API", {"Setup API", "driver", "device id"}},
    {L"disk", {"STORAGE_", "IOCTL_", "the bus", "the list of disks"}},
    {L"optical drive", {"STORAGE_", "profiles", "72300", "QueryDosDeviceW"}},
    {L"QueryDosDeviceW", {"QueryDosDeviceW", "STORAGE_", "IOCTL_"}},
    {L"volume", {"GetVolumeInformationW", "GetDiskFreeSpaceExW", "the list of letters"}},
    {L"GetIfTable2", {"the interface", "the kinds"}},
    {L"GetAdaptersAddresses", {"the interfaces", "the addresses", "the kinds"}},
    {L"sound endpoints", {"endpoints", "IMMDeviceEnumerator"}},
    {L"QueryDisplayConfig", {"display configuration", "the same", "the displays"}},
    {L"CreateDXGIFactory1", {"DXGI"}},
    {L"CheckInterfaceSupport", {"DXGI", "the driver version"}},
    {L"Direct3D", {"Direct3D"}},
    {L"D3D", {"Direct3D"}},
    {L"download", {"download"}},
};

bool Mentions(std::string_view source, std::string_view word)
{
    return source.find(word) != source.npos;
}

/// Whether a value may come from the source that failed.
bool IsFrom(std::string_view source, const SourceFailure& failure)
{
    for (const SourceWords& row : Sources) {
        if (failure.source.starts_with(row.start))
            return std::ranges::any_of(
                row.words, [source](const char* word) { return word != nullptr && Mentions(source, word); });
    }
    const std::wstring_view function = std::wstring_view(failure.source).substr(0, failure.source.find(L' '));
    return !function.empty() && Mentions(source, std::string(function.begin(), function.end()));
}

SystemValueID MakeId(unsigned id, int index = 0)
{
    return SystemValueID(GroupID(id), index);
}

/// Whether nobody has asked for a value that is only detected when it is asked for.
bool IsUnasked(const CatalogueValue& value)
{
    return value.isGated && !Session::Current().IsWanted(GroupID(static_cast<unsigned>(value.id)));
}

/// An empty value whose reason is not noted yet.
bool LacksReason(const SystemValueID& id)
{
    const SystemValues& values = Session::Current().Values();
    return values.FindReason(id) && !values.HasReason(id);
}

void NoteReason(const CatalogueValue& value, int index, const Failures& failures)
{
    const SystemValueID id = MakeId(static_cast<unsigned>(value.id), index);
    if (!LacksReason(id))
        return;
    SystemValues& values = Session::Current().Values();
    const auto failure = std::ranges::find_if(
        failures.sources, [&value](const SourceFailure& found) { return IsFrom(value.Source(), found); });
    if (IsUnasked(value))
        values.SetReason(id, {Reason::Kind::NotAskedFor, {}});
    else if (failure != failures.sources.end())
        values.SetReason(id, {Reason::Kind::NotReadable, *failure});
    else if (failures.hasException && value.Source() != NoSource)
        values.SetReason(id, {Reason::Kind::DetectorFailed, {}});
}

/// Logs a value that a detector has stored, or why it is empty, with its name.
void LogValue(const CatalogueValue& value, int index)
{
    const SystemValueID id = MakeId(static_cast<unsigned>(value.id), index);
    const SystemValues& values = Session::Current().Values();
    const std::optional<Reason> reason = values.FindReason(id);
    const std::wstring place = value.hasIndexes ? L"[" + std::to_wstring(index) + L"]" : L"";
    WriteLog(LogTrace, L"Value ", value.id, place, L' ', value.Name(), reason ? L" is empty, " : L": ",
             reason ? reason->ToString() : values.GetValue(id).Text());
}

}  // namespace

void NoteReasons(std::wstring_view detector, const Failures& failures) noexcept
{
    try {
        const std::string name(detector.begin(), detector.end());
        const SystemValues& values = Session::Current().Values();
        for (const CatalogueValue& value : CatalogueValues) {
            if (value.Detector() != name)
                continue;
            const auto id = static_cast<unsigned>(value.id);
            int index = 0;
            do {
                NoteReason(value, index, failures);
                if (Log::Instance().IsEnabled(LogTrace))
                    LogValue(value, index);
                ++index;
            } while (value.hasIndexes && values.Exists(MakeId(id, index)));
        }
    } catch (...) {
        // Out of memory: the values count as not there.
    }
}

void NoteFailure(unsigned id, int index, const std::vector<SourceFailure>& failures)
{
    const CatalogueValue* const value = FindCatalogueValue(static_cast<int>(id));
    if (value == nullptr || IsUnasked(*value))
        return;
    for (const SourceFailure& failure : failures) {
        if (IsFrom(value->Source(), failure) && LacksReason(MakeId(id, index)))
            Session::Current().Values().SetReason(MakeId(id, index), {Reason::Kind::NotReadable, failure});
    }
}

void NoteOrigin(unsigned id, unsigned origin)
{
    SystemValues& values = Session::Current().Values();
    if (LacksReason(MakeId(id)) && values.HasReason(MakeId(origin)))
        values.SetReason(MakeId(id), *values.FindReason(MakeId(origin)));
}

}  // namespace kel
