#include <algorithm>
#include <tuple>

#include "detectors/Detectors.h"
#include "detectors/DriverIds.h"
#include "detectors/Facts.h"
#include "probes/setup/SetupLib.h"
#include "probes/sound/SoundEndpoints.h"
#include "probes/wmi/WMI.h"
#include "values/Count.h"
#include "values/StableSort.h"

namespace kel {

namespace {

constexpr FactTable DeviceFacts(Fact{72802, &SoundInfo::name, L"name"},
                                Fact{72803, &SoundInfo::deviceId, L"device id"},
                                Fact{SoundDriver, &SoundInfo::driverVersion},
                                Fact{72805, &SoundInfo::servesDefault},
                                Fact{NotStored, &SoundInfo::instanceId}, Fact{NotStored, &SoundInfo::isOff});
using Device = decltype(DeviceFacts)::Device;

/// Totals of all devices.
struct SoundSummary {
    bool hasSound = false;
    Count count = Count(0);
    Count outputs = Count(0);
    std::optional<Count> inputs;  ///< unknown when the sound service does not answer
};

/// The facts about the inputs.
struct InputInfo {
    std::optional<Count> microphones;
};

constexpr FactTable SummaryFacts(Fact{72800, &SoundSummary::hasSound}, Fact{72801, &SoundSummary::count},
                                 Fact{72807, &SoundSummary::outputs}, Fact{72808, &SoundSummary::inputs});
constexpr FactTable InputFacts(Fact{73510, &InputInfo::microphones});

/// The buses of devices, the most likely to be used first. Other buses come next, then outputs of graphics
/// cards, then devices that exist in a driver only.
constexpr std::wstring_view Buses[] = {L"HDAUDIO", L"USB", L"INTELAUDIO", L"BTHENUM"};
constexpr std::wstring_view SoftwareBuses[] = {L"ROOT", L"SWD", L"SW"};
/// AMD, NVIDIA and Intel: their devices on a codec bus belong to graphics cards.
constexpr std::wstring_view GraphicsVendors[] = {L"1002", L"10DE", L"8086"};

bool IsSame(const SoundInfo& one, const SoundInfo& other)
{
    if (!one.instanceId.empty() && !other.instanceId.empty())
        return one.instanceId == other.instanceId;
    return one.deviceId.Matches(other.deviceId);
}

int RankOf(const SoundInfo& device)
{
    // A driver's own devices can have any hardware id; the instance id has the bus.
    const std::wstring bus = DeviceID(device.instanceId).Bus();
    if (std::ranges::count(SoftwareBuses, bus) > 0)
        return 6;
    if (bus.ends_with(L"AUDIO") && std::ranges::count(GraphicsVendors, device.deviceId.Vendor()) > 0)
        return 5;
    return static_cast<int>(std::ranges::find(Buses, bus) - std::begin(Buses));
}

bool ComesBefore(const Device& one, const Device& other)
{
    const auto rank = [](const SoundInfo& device) {
        return std::tuple(!device.servesDefault.value_or(false), RankOf(device),
                          std::wstring(device.deviceId.ToString()), device.instanceId);
    };
    return rank(one.record) < rank(other.record);
}

std::optional<Count> ToCount(std::optional<UINT> number)
{
    return number ? std::optional(Count(*number)) : std::nullopt;
}

std::vector<Device> ListDevices(const SoundEndpoints& endpoints)
{
    std::vector<SoundInfo> listed;
    SetupLib::Instance().GetSoundInfo(listed);
    std::vector<SoundInfo> first(1);
    if (!WMI::Instance().GetSoundValues(first[0]))
        first.clear();
    std::vector<Device> devices;
    DeviceFacts.Join(devices, listed, L"the Setup API", &IsSame);
    DeviceFacts.Join(devices, first, L"WMI", &IsSame);
    DeviceFacts.Join(devices, endpoints.devices, L"the endpoints", &IsSame);
    for (Device& device : devices) {
        if (endpoints.isDefaultKnown && !device.record.servesDefault)
            device.record.servesDefault = false;
    }
    std::erase_if(devices, [](const Device& device) { return device.record.isOff; });
    SortStably(devices, &ComesBefore);
    return devices;
}

}  // namespace

bool Sound::Detect()
{
    return Detect(SoundFunctions::OfSystem());
}

bool Sound::Detect(const SoundFunctions& functions)
{
    return Guarded(L"kel::Sound::Detect", nullptr, [&functions] {
        StoreDefaults(SummaryFacts, DeviceFacts, InputFacts);

        const SoundEndpoints endpoints = ReadSoundEndpoints();
        const std::vector<Device> devices = ListDevices(endpoints);
        const UINT outputs = endpoints.outputs ? *endpoints.outputs : functions.countOutputs();
        WriteLog(LogTrace, L"Sound[0] outputs from ",
                 endpoints.outputs ? L"the endpoints" : L"waveOutGetNumDevs");
        const bool hasSound = !devices.empty() || outputs > 0 || endpoints.inputs.value_or(0) > 0;
        if (!hasSound)
            WriteLog(LogTrace, L"There is no sound device.");
        SummaryFacts.Store({hasSound, Count(static_cast<std::int64_t>(devices.size())), Count(outputs),
                            ToCount(endpoints.inputs)});
        StoreList(DeviceFacts, devices, L"Sound");
        InputFacts.Store({ToCount(endpoints.microphones)});
    });
}

StoredFacts Sound::ListFacts()
{
    return CollectFacts(SummaryFacts, DeviceFacts, InputFacts);
}

}  // namespace kel
