#include <algorithm>
#include <tuple>

#include "detectors/Detectors.h"
#include "detectors/Facts.h"
#include "probes/graphics/DisplayConfig.h"
#include "probes/graphics/Edid.h"
#include "probes/setup/SetupLib.h"
#include "values/StableSort.h"

namespace kel {

namespace {

constexpr FactTable Totals(Fact{73100, &ListTotals::isThere}, Fact{73101, &ListTotals::count});

constexpr FactTable Facts(
    Fact{73102, &MonitorInfo::name, L"name"}, Fact{73103, &MonitorInfo::deviceId, L"device id"},
    Fact{73104, &MonitorInfo::nativeResolution}, Fact{73105, &MonitorInfo::currentResolution, L"resolution"},
    Fact{73106, &MonitorInfo::refreshRate, L"refresh rate"}, Fact{73107, &MonitorInfo::diagonal},
    Fact{73108, &MonitorInfo::width}, Fact{73109, &MonitorInfo::height}, Fact{73110, &MonitorInfo::connector},
    Fact{73111, &MonitorInfo::isBuiltIn}, Fact{73112, &MonitorInfo::isHdr}, Fact{73113, &MonitorInfo::year},
    Fact{73491, &MonitorInfo::highestRate, L"highest refresh rate"}, Fact{NotStored, &MonitorInfo::instance},
    Fact{NotStored, &MonitorInfo::isPrimary}, Fact{NotStored, &MonitorInfo::display});

using Devices = std::vector<decltype(Facts)::Device>;

/// Adds a source's facts about the listed monitors. The source also lists monitors that are not active, or
/// were connected earlier.
void MergeSame(Devices& devices, const std::vector<MonitorInfo>& listed, const wchar_t* source)
{
    for (auto& device : devices) {
        for (const MonitorInfo& monitor : listed) {
            if (!monitor.instance.empty() && monitor.instance == device.record.instance)
                Facts.Merge(device, monitor, source);
        }
    }
}

/// Whether no further source can add anything.
bool AreComplete(const Devices& devices)
{
    return std::ranges::all_of(devices, [](const auto& device) {
        const MonitorInfo& monitor = device.record;
        return monitor.name.HasValue() && monitor.currentResolution.HasValue() && monitor.refreshRate;
    });
}

bool AreNamed(const Devices& devices)
{
    return std::ranges::all_of(devices, [](const auto& device) { return device.record.name.HasValue(); });
}

/// Whether a monitor uses Windows' generic driver, whose name is in the system's language.
bool IsGeneric(const std::vector<MonitorInfo>& present, const std::wstring& instance)
{
    return std::ranges::any_of(present, [&instance](const MonitorInfo& monitor) {
        return monitor.isGeneric && monitor.instance == instance;
    });
}

/// The EDID, without its size when its mode is not the monitor's: it then describes only a part of the
/// monitor, such as a tile.
MonitorInfo WithoutOtherSize(MonitorInfo edid, const MonitorInfo& monitor)
{
    const Resolution& native = monitor.nativeResolution;
    if (native.HasValue() && edid.nativeResolution.HasValue() && !(native == edid.nativeResolution)) {
        edid.diagonal.reset();
        edid.width.reset();
        edid.height.reset();
    }
    return edid;
}

Devices ListMonitors(const DisplayConfig& config)
{
    Devices devices;
    const DisplayList list = config.List();
    for (const MonitorInfo& monitor : list.monitors) {
        auto& device = devices.emplace_back();
        Facts.Merge(device, monitor, list.source);
        std::optional<MonitorInfo> edid;
        CollectFailures(device.record.failures, [&] { edid = ReadMonitorEdid(monitor.instance); });
        if (edid)
            Facts.Merge(device, WithoutOtherSize(*edid, monitor), L"EDID");
    }
    std::vector<MonitorInfo> present;
    if (!AreNamed(devices))
        SetupLib::Instance().GetMonitorInfo(present);
    if (!AreComplete(devices)) {
        DisplayList further = config.ListDevices();
        for (MonitorInfo& monitor : further.monitors) {
            if (IsGeneric(present, monitor.instance))
                monitor.name = Name();
        }
        MergeSame(devices, further.monitors, further.source);
    }
    MergeSame(devices, present, L"the Setup API");
    for (auto& device : devices) {
        MonitorInfo modes;
        modes.highestRate = config.FindHighestRate(device.record.display, device.record.currentResolution);
        Facts.Merge(device, modes, L"the display's modes");
    }
    SortStably(devices, [](const auto& one, const auto& other) {
        const auto rank = [](const MonitorInfo& monitor) {
            return std::tuple(!monitor.isPrimary, std::wstring(monitor.deviceId.ToString()),
                              monitor.instance);
        };
        return rank(one.record) < rank(other.record);
    });
    return devices;
}

}  // namespace

bool Monitor::Detect()
{
    return Detect(DisplayConfig::Instance());
}

bool Monitor::Detect(const DisplayConfig& config)
{
    return Guarded(L"kel::Monitor::Detect", L"Error in Monitor detection.", [&config] {
        StoreDefaults(Totals, Facts);
        const Devices devices = ListMonitors(config);
        Totals.Store(ListTotals(std::ssize(devices)));
        StoreList(Facts, devices, L"Monitor");
    });
}

StoredFacts Monitor::ListFacts()
{
    return CollectFacts(Totals, Facts);
}

}  // namespace kel
