#include "probes/graphics/DisplayConfig.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "diag/ProcessInstance.h"
#include "diag/SourceFailures.h"
#include "platform/RegistryValue.h"
#include "probes/Attempt.h"
#include "probes/graphics/DisplayRules.h"
#include "values/Junk.h"

namespace kel {

namespace {

constexpr int QueryAttempts = 5;
constexpr DWORD MaxPaths = 64;
constexpr DWORD MaxModes = 4096;
constexpr const wchar_t* TerminalServer = L"SYSTEM\\CurrentControlSet\\Control\\Terminal Server";

/// DISPLAYCONFIG_GET_ADVANCED_COLOR_INFO_2, which not every platform's headers have.
struct AdvancedColor2 {
    DISPLAYCONFIG_DEVICE_INFO_HEADER header;
    UINT32 flags;
    UINT32 encoding;
    UINT32 bitsPerChannel;
    UINT32 activeMode;
};
constexpr auto AdvancedColorInfo2 = static_cast<DISPLAYCONFIG_DEVICE_INFO_TYPE>(15);
constexpr UINT32 HighDynamicRange = 1U << 4;  // highDynamicRangeSupported

/// A source is identified by its adapter and its number on that adapter.
bool IsSameSource(const DISPLAYCONFIG_PATH_SOURCE_INFO& one, const DISPLAYCONFIG_PATH_SOURCE_INFO& other)
{
    return one.adapterId.LowPart == other.adapterId.LowPart &&
           one.adapterId.HighPart == other.adapterId.HighPart && one.id == other.id;
}

/// The primary display is where the desktop's coordinates begin.
void Place(DisplayInfo& display, LONG x, LONG y)
{
    display.position = {x, y};
    display.isPrimary = x == 0 && y == 0;
}

DisplayInfo ReadSource(const DISPLAYCONFIG_PATH_INFO& path, const std::vector<DISPLAYCONFIG_MODE_INFO>& modes)
{
    DisplayInfo display;
    display.refreshRate = RefreshRate(path.targetInfo.refreshRate);
    const UINT32 place = path.sourceInfo.modeInfoIdx;
    if (place >= modes.size() || modes[place].infoType != DISPLAYCONFIG_MODE_INFO_TYPE_SOURCE)
        return display;
    const DISPLAYCONFIG_SOURCE_MODE& mode = modes[place].sourceMode;
    Place(display, mode.position.x, mode.position.y);
    display.resolution = Resolution(mode.width, mode.height);
    display.bitsPerPixel = BitsPerPixel(mode.pixelFormat);
    return display;
}

template <typename Request>
Request RequestFor(DISPLAYCONFIG_DEVICE_INFO_TYPE type, const DISPLAYCONFIG_PATH_TARGET_INFO& target)
{
    Request request = {};
    request.header = {type, sizeof(request), target.adapterId, target.id};
    return request;
}

/// Copies the display's facts into the monitor.
void Show(const DisplayInfo& display, MonitorInfo& monitor)
{
    monitor.currentResolution = display.resolution;
    monitor.isPrimary = display.isPrimary;
}

}  // namespace

DisplayConfig& DisplayConfig::Instance()
{
    return ProcessInstance<DisplayConfig>();
}

DisplayConfig::DisplayConfig(DisplayFunctions newFunctions) : functions(std::move(newFunctions)) {}

bool DisplayConfig::IsRemote() const
{
    if (functions.getSystemMetrics(SM_REMOTESESSION) != 0)
        return true;
    const OwnedKey key = OpenKey(HKEY_LOCAL_MACHINE, TerminalServer, KEY_READ);
    const std::optional<RegistryValue> value = key ? ReadValue(key.get(), L"GlassSessionId") : std::nullopt;
    const std::optional<DWORD> session = functions.getSession();
    DWORD own = 0;
    if (!session || !value || value->type != REG_DWORD || value->bytes.size() != sizeof(own))
        return false;
    std::memcpy(&own, value->bytes.data(), sizeof(own));
    return *session != own;
}

std::optional<Count> DisplayConfig::GetPrimaryScale() const
{
    constexpr UINT Unscaled = 96;
    const std::optional<UINT> dpi = functions.getPrimaryDpi();
    if (!dpi)
        FailureScope::Note(L"GetDpiForMonitor", ERROR_SUCCESS);
    return dpi ? std::optional(Count((*dpi * 100 + Unscaled / 2) / Unscaled)) : std::nullopt;
}

DisplayList DisplayConfig::List() const
{
    DisplayList list;
    for (const auto source :
         {&DisplayConfig::ListPaths, &DisplayConfig::ListDevices, &DisplayConfig::ListMonitors}) {
        Attempt(L"Error in display detection.", [&] { list = (this->*source)(); });
        if (!list.displays.empty())
            break;
    }
    return list;
}

bool DisplayConfig::Query(std::vector<DISPLAYCONFIG_PATH_INFO>& paths,
                          std::vector<DISPLAYCONFIG_MODE_INFO>& modes) const
{
    constexpr UINT32 Flags = QDC_ONLY_ACTIVE_PATHS;
    LONG result = ERROR_INSUFFICIENT_BUFFER;
    // The size may change between two calls, as a monitor is plugged in; a few attempts are enough.
    for (int attempt = 0; attempt < QueryAttempts && result == ERROR_INSUFFICIENT_BUFFER; ++attempt) {
        UINT32 pathCount = 0;
        UINT32 modeCount = 0;
        result = functions.getDisplayConfigBufferSizes(Flags, &pathCount, &modeCount);
        if (result != ERROR_SUCCESS)
            break;
        paths.resize(pathCount);
        modes.resize(modeCount);
        result =
            functions.queryDisplayConfig(Flags, &pathCount, paths.data(), &modeCount, modes.data(), nullptr);
        paths.resize(std::min<std::size_t>(pathCount, paths.size()));
        modes.resize(std::min<std::size_t>(modeCount, modes.size()));
    }
    if (result != ERROR_SUCCESS) {
        WriteLog(LogWarning, L"QueryDisplayConfig failed with error: ", result);
        FailureScope::Note(L"QueryDisplayConfig", static_cast<std::uint32_t>(result));
    }
    return result == ERROR_SUCCESS;
}

DisplayList DisplayConfig::ListPaths() const
{
    DisplayList list{L"the display configuration", {}, {}};
    std::vector<DISPLAYCONFIG_PATH_INFO> paths;
    std::vector<DISPLAYCONFIG_MODE_INFO> modes;
    if (!Query(paths, modes))
        return list;
    for (auto path = paths.begin(); path != paths.end(); ++path) {
        const DisplayInfo display = ReadSource(*path, modes);
        const auto isShown = [&path](const DISPLAYCONFIG_PATH_INFO& earlier) {
            return IsSameSource(earlier.sourceInfo, path->sourceInfo);
        };
        if (std::none_of(paths.begin(), path, isShown))
            list.displays.push_back(display);
        MonitorInfo monitor = ReadTarget(path->targetInfo);
        Show(display, monitor);
        monitor.display = GetDeviceName(path->sourceInfo);
        list.monitors.push_back(monitor);
    }
    return list;
}

MonitorInfo DisplayConfig::ReadTarget(const DISPLAYCONFIG_PATH_TARGET_INFO& target) const
{
    MonitorInfo monitor;
    monitor.refreshRate = RefreshRate(target.refreshRate);
    monitor.connector = Name(ConnectorName(target.outputTechnology));
    monitor.isBuiltIn = IsBuiltIn(target.outputTechnology);
    auto name =
        RequestFor<DISPLAYCONFIG_TARGET_DEVICE_NAME>(DISPLAYCONFIG_DEVICE_INFO_GET_TARGET_NAME, target);
    if (functions.displayConfigGetDeviceInfo(&name.header) == ERROR_SUCCESS) {
        monitor.name = Name(TidyText(name.monitorFriendlyDeviceName));
        monitor.instance = InstanceOfPath(name.monitorDevicePath);
        monitor.deviceId = DeviceID(monitor.instance);
    }
    auto mode = RequestFor<DISPLAYCONFIG_TARGET_PREFERRED_MODE>(
        DISPLAYCONFIG_DEVICE_INFO_GET_TARGET_PREFERRED_MODE, target);
    if (functions.displayConfigGetDeviceInfo(&mode.header) == ERROR_SUCCESS)
        monitor.nativeResolution = KnownMode(mode.width, mode.height);
    ReadColor(target, monitor);
    return monitor;
}

void DisplayConfig::ReadColor(const DISPLAYCONFIG_PATH_TARGET_INFO& target, MonitorInfo& monitor) const
{
    // The colour management of newer systems sets the old bits even for displays without high dynamic range.
    auto newer = RequestFor<AdvancedColor2>(AdvancedColorInfo2, target);
    if (functions.displayConfigGetDeviceInfo(&newer.header) == ERROR_SUCCESS) {
        monitor.isHdr = (newer.flags & HighDynamicRange) != 0;
        return;
    }
    auto older = RequestFor<DISPLAYCONFIG_GET_ADVANCED_COLOR_INFO>(
        DISPLAYCONFIG_DEVICE_INFO_GET_ADVANCED_COLOR_INFO, target);
    if (functions.displayConfigGetDeviceInfo(&older.header) == ERROR_SUCCESS)
        monitor.isHdr = older.advancedColorSupported != 0;
}

std::wstring DisplayConfig::GetDeviceName(const DISPLAYCONFIG_PATH_SOURCE_INFO& source) const
{
    DISPLAYCONFIG_SOURCE_DEVICE_NAME name = {};
    name.header = {DISPLAYCONFIG_DEVICE_INFO_GET_SOURCE_NAME, sizeof(name), source.adapterId, source.id};
    const bool isNamed = functions.displayConfigGetDeviceInfo(&name.header) == ERROR_SUCCESS;
    return isNamed ? name.viewGdiDeviceName : std::wstring();
}

std::optional<Count> DisplayConfig::FindHighestRate(const std::wstring& display,
                                                    const Resolution& resolution) const
{
    DWORD highest = 0;
    DEVMODEW mode = {};
    mode.dmSize = sizeof(mode);
    for (DWORD index = 0; !display.empty() && resolution.HasValue() && index < MaxModes &&
                          functions.enumDisplaySettings(display.c_str(), index, &mode, 0);
         ++index) {
        if (mode.dmPelsWidth == resolution.Width() && mode.dmPelsHeight == resolution.Height())
            highest = std::max(highest, mode.dmDisplayFrequency);
    }
    return highest > 1 ? std::optional(Count(highest)) : std::nullopt;
}

DisplayList DisplayConfig::ListDevices() const
{
    DisplayList list{L"the display devices", {}, {}};
    DISPLAY_DEVICEW adapter = {};
    adapter.cb = sizeof(adapter);
    for (DWORD index = 0; index < MaxPaths && functions.enumDisplayDevices(nullptr, index, &adapter, 0);
         ++index) {
        // A mirroring driver repeats what another display shows.
        constexpr DWORD States = DISPLAY_DEVICE_ATTACHED_TO_DESKTOP | DISPLAY_DEVICE_MIRRORING_DRIVER;
        if ((adapter.StateFlags & States) != DISPLAY_DEVICE_ATTACHED_TO_DESKTOP)
            continue;
        const DisplayInfo display = ReadSettings(adapter.DeviceName);
        list.displays.push_back(display);
        DISPLAY_DEVICEW device = {};
        device.cb = sizeof(device);
        for (DWORD place = 0;
             place < MaxPaths &&
             functions.enumDisplayDevices(adapter.DeviceName, place, &device, EDD_GET_DEVICE_INTERFACE_NAME);
             ++place) {
            if ((device.StateFlags & DISPLAY_DEVICE_ACTIVE) == 0)
                continue;
            MonitorInfo monitor;
            monitor.name = Name(TidyText(device.DeviceString));
            monitor.instance = InstanceOfPath(device.DeviceID);
            monitor.deviceId = DeviceID(monitor.instance);
            monitor.refreshRate = display.refreshRate;
            monitor.display = adapter.DeviceName;
            Show(display, monitor);
            list.monitors.push_back(monitor);
        }
    }
    return list;
}

DisplayInfo DisplayConfig::ReadSettings(const wchar_t* device) const
{
    DisplayInfo display;
    DEVMODEW mode = {};
    mode.dmSize = sizeof(mode);
    if (!functions.enumDisplaySettings(device, ENUM_CURRENT_SETTINGS, &mode, 0))
        return display;
    Place(display, mode.dmPosition.x, mode.dmPosition.y);
    display.resolution = Resolution(mode.dmPelsWidth, mode.dmPelsHeight);
    if (mode.dmBitsPerPel != 0)
        display.bitsPerPixel = Count(mode.dmBitsPerPel);
    if (mode.dmDisplayFrequency > 1)  // 0 and 1 stand for the adapter's default
        display.refreshRate = Count(mode.dmDisplayFrequency);
    return display;
}

DisplayList DisplayConfig::ListMonitors() const
{
    DisplayList list{L"the desktop's monitors", {}, {}};
    for (const MONITORINFO& found : functions.listMonitors()) {
        const RECT& place = found.rcMonitor;
        DisplayInfo display;
        Place(display, place.left, place.top);
        display.isPrimary = (found.dwFlags & MONITORINFOF_PRIMARY) != 0;
        display.resolution = Resolution(static_cast<std::uint32_t>(place.right - place.left),
                                        static_cast<std::uint32_t>(place.bottom - place.top));
        list.displays.push_back(display);
        MonitorInfo monitor;
        Show(display, monitor);
        list.monitors.push_back(monitor);
    }
    return list;
}

}  // namespace kel
