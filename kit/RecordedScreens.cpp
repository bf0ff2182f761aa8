#include "kit/RecordedScreens.h"

#include <algorithm>
#include <cstdint>

#include "kit/DeviceEdges.h"
#include "kit/Text.h"
#include "probes/graphics/DisplayConfig.h"
#include "probes/graphics/MonitorInfo.h"

namespace kel::kit {

namespace {

constexpr DWORD MaxModes = 4096;
constexpr DWORD MaxScreens = 64;

template <typename Request>
Request Ask(const DisplayFunctions& functions, int type, const LUID& adapter, UINT32 id, bool& isAnswered)
{
    Request request = {};
    request.header = {static_cast<DISPLAYCONFIG_DEVICE_INFO_TYPE>(type), sizeof(request), adapter, id};
    isAnswered = functions.displayConfigGetDeviceInfo(&request.header) == ERROR_SUCCESS;
    return request;
}

/// The fastest of the modes that have the picture's size; the only one that a value is made of.
std::string FastestMode(const DisplayFunctions& functions, const wchar_t* device, DWORD width, DWORD height)
{
    DEVMODEW mode = {};
    mode.dmSize = sizeof(mode);
    DWORD rate = 0;
    for (DWORD number = 0; number < MaxModes && functions.enumDisplaySettings(device, number, &mode, 0);
         ++number) {
        if (mode.dmPelsWidth == width && mode.dmPelsHeight == height)
            rate = std::max(rate, mode.dmDisplayFrequency);
    }
    return rate == 0 ? "" : std::to_string(width) + "x" + std::to_string(height) + "@" + std::to_string(rate);
}

std::string SizeFields(LONG x, LONG y, DWORD width, DWORD height)
{
    return "|x=" + std::to_string(x) + "|y=" + std::to_string(y) + "|width=" + std::to_string(width) +
           "|height=" + std::to_string(height);
}

/// The high dynamic range by the two requests, as fields.
std::string ColorFields(const DisplayFunctions& functions, const DISPLAYCONFIG_PATH_TARGET_INFO& target)
{
    struct NewerColor {
        DISPLAYCONFIG_DEVICE_INFO_HEADER header;
        UINT32 flags, encoding, bitsPerChannel, activeMode;
    };
    constexpr int NewerRequest = 15;
    constexpr UINT32 HighDynamicRange = 1U << 4;
    bool isAnswered = false;
    std::string fields;
    const auto older = Ask<DISPLAYCONFIG_GET_ADVANCED_COLOR_INFO>(
        functions, DISPLAYCONFIG_DEVICE_INFO_GET_ADVANCED_COLOR_INFO, target.adapterId, target.id,
        isAnswered);
    if (isAnswered)
        fields += older.advancedColorSupported ? "|hdr=1" : "|hdr=0";
    const auto newer = Ask<NewerColor>(functions, NewerRequest, target.adapterId, target.id, isAnswered);
    if (isAnswered)
        fields += (newer.flags & HighDynamicRange) != 0 ? "|hdr2=1" : "|hdr2=0";
    return fields;
}

std::string SourceFields(const DISPLAYCONFIG_PATH_INFO& path,
                         const std::vector<DISPLAYCONFIG_MODE_INFO>& modes, const DisplayFunctions& functions)
{
    bool isAnswered = false;
    const auto name =
        Ask<DISPLAYCONFIG_SOURCE_DEVICE_NAME>(functions, DISPLAYCONFIG_DEVICE_INFO_GET_SOURCE_NAME,
                                              path.sourceInfo.adapterId, path.sourceInfo.id, isAnswered);
    if (path.sourceInfo.modeInfoIdx >= modes.size())
        return SizeFields(0, 0, 0, 0);
    const DISPLAYCONFIG_SOURCE_MODE& mode = modes[path.sourceInfo.modeInfoIdx].sourceMode;
    return SizeFields(mode.position.x, mode.position.y, mode.width, mode.height) +
           Field("format", std::to_string(static_cast<int>(mode.pixelFormat))) +
           Field("modes",
                 isAnswered ? FastestMode(functions, name.viewGdiDeviceName, mode.width, mode.height) : "");
}

/// @param adapter a number in place of the adapter's key, which changes with each start
Screen RecordPath(const DISPLAYCONFIG_PATH_INFO& path, const std::vector<DISPLAYCONFIG_MODE_INFO>& modes,
                  std::size_t adapter, const DisplayFunctions& functions, DeviceMasks& masks)
{
    const DISPLAYCONFIG_PATH_TARGET_INFO& target = path.targetInfo;
    bool isAnswered = false;
    Screen screen;
    const auto name = Ask<DISPLAYCONFIG_TARGET_DEVICE_NAME>(
        functions, DISPLAYCONFIG_DEVICE_INFO_GET_TARGET_NAME, target.adapterId, target.id, isAnswered);
    if (isAnswered)
        screen.instance = InstanceOfPath(name.monitorDevicePath);
    screen.fields = "|picture=" + std::to_string(path.sourceInfo.id) + SourceFields(path, modes, functions) +
                    Field("rate", std::to_string(target.refreshRate.Numerator)) +
                    Field("per", std::to_string(target.refreshRate.Denominator)) +
                    Field("connector", Hex(static_cast<std::uint32_t>(target.outputTechnology), 8)) +
                    Field("name", isAnswered ? masks.Text(name.monitorFriendlyDeviceName) : "") +
                    Field("adapter", Hex(static_cast<std::uint32_t>(adapter), 8)) +
                    ColorFields(functions, target);
    const auto mode = Ask<DISPLAYCONFIG_TARGET_PREFERRED_MODE>(
        functions, DISPLAYCONFIG_DEVICE_INFO_GET_TARGET_PREFERRED_MODE, target.adapterId, target.id,
        isAnswered);
    if (isAnswered && mode.width != 0 && mode.height != 0)
        screen.fields += Field("preferred", std::to_string(mode.width) + "x" + std::to_string(mode.height));
    return screen;
}

std::vector<Screen> RecordPaths(const DisplayFunctions& functions, DeviceMasks& masks)
{
    constexpr UINT32 Flags = QDC_ONLY_ACTIVE_PATHS;
    UINT32 pathCount = 0;
    UINT32 modeCount = 0;
    if (functions.getDisplayConfigBufferSizes(Flags, &pathCount, &modeCount) != ERROR_SUCCESS)
        return {};
    std::vector<DISPLAYCONFIG_PATH_INFO> paths(pathCount);
    std::vector<DISPLAYCONFIG_MODE_INFO> modes(modeCount);
    if (functions.queryDisplayConfig(Flags, &pathCount, paths.data(), &modeCount, modes.data(), nullptr) !=
        ERROR_SUCCESS)
        return {};
    paths.resize(std::min<std::size_t>(pathCount, paths.size()));
    modes.resize(std::min<std::size_t>(modeCount, modes.size()));
    std::vector<Screen> screens;
    std::vector<std::uint64_t> adapters;
    for (const DISPLAYCONFIG_PATH_INFO& path : paths) {
        const LUID& luid = path.sourceInfo.adapterId;
        const std::uint64_t key =
            static_cast<std::uint64_t>(static_cast<std::uint32_t>(luid.HighPart)) << 32 | luid.LowPart;
        const auto found = std::ranges::find(adapters, key);
        const auto adapter = static_cast<std::size_t>(found - adapters.begin());
        if (found == adapters.end())
            adapters.push_back(key);
        screens.push_back(RecordPath(path, modes, adapter + 1, functions, masks));
    }
    return screens;
}

/// The displays by the older functions.
std::vector<Screen> RecordAttached(const DisplayFunctions& functions)
{
    std::vector<Screen> screens;
    DISPLAY_DEVICEW adapter = {};
    adapter.cb = sizeof(adapter);
    for (DWORD index = 0; index < MaxScreens && functions.enumDisplayDevices(nullptr, index, &adapter, 0);
         ++index) {
        constexpr DWORD States = DISPLAY_DEVICE_ATTACHED_TO_DESKTOP | DISPLAY_DEVICE_MIRRORING_DRIVER;
        DISPLAY_DEVICEW device = {};
        device.cb = sizeof(device);
        DEVMODEW mode = {};
        mode.dmSize = sizeof(mode);
        if ((adapter.StateFlags & States) != DISPLAY_DEVICE_ATTACHED_TO_DESKTOP ||
            !functions.enumDisplaySettings(adapter.DeviceName, ENUM_CURRENT_SETTINGS, &mode, 0))
            continue;
        const bool hasMonitor =
            functions.enumDisplayDevices(adapter.DeviceName, 0, &device, EDD_GET_DEVICE_INTERFACE_NAME);
        screens.push_back(
            {hasMonitor ? InstanceOfPath(device.DeviceID) : std::wstring(),
             "|picture=" + std::to_string(screens.size()) +
                 SizeFields(mode.dmPosition.x, mode.dmPosition.y, mode.dmPelsWidth, mode.dmPelsHeight) +
                 Field("rate", std::to_string(mode.dmDisplayFrequency)) + "|per=1" +
                 Field("modes",
                       FastestMode(functions, adapter.DeviceName, mode.dmPelsWidth, mode.dmPelsHeight))});
    }
    return screens;
}

}  // namespace

Screens RecordScreens(const DisplayFunctions& functions, DeviceMasks& masks)
{
    Screens screens{RecordPaths(functions, masks), true};
    if (screens.all.empty())
        screens = {RecordAttached(functions), false};
    return screens;
}

}  // namespace kel::kit
