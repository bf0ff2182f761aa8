// Fake displays behind the system's own functions.
#pragma once

#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "probes/graphics/DisplayFunctions.h"
#include "support/Split.h"
#include "values/Resolution.h"

namespace kel::test {

/// A monitor and the picture on it.
struct Screen {
    UINT32 source;  ///< screens of one source show the same picture
    LONG x, y;
    DWORD width, height;
    DISPLAYCONFIG_RATIONAL rate;
    UINT32 technology;
    std::wstring name;
    std::wstring instance;  ///< with "#" in place of "\"
    int isHdr = -1;         ///< -1: the system does not report it
    UINT32 pixelFormat = DISPLAYCONFIG_PIXELFORMAT_32BPP;
    LUID adapter = {};  ///< sources are numbered on each from 0
    Resolution preferred = {};
    int isHdr2 = -1;           ///< by the newer request
    std::wstring modes = {};   ///< such as "1920x1080@144", with blanks between them
    std::wstring device = {};  ///< its name by its driver, where it is not that of all
};

struct FakeDisplays {
    std::vector<Screen> screens;
    bool hasPaths = true, hasDevices = true;
    int shortAnswers = 0;      ///< how often a monitor is plugged in between two calls
    bool isUnplugged = false;  ///< a monitor, between two calls
    bool isRemote = false;
    std::wstring deviceName = L"Generic PnP Monitor";  ///< of each, by its driver
    std::optional<DWORD> session;
    std::optional<UINT> dpi;  ///< of the primary display

    std::wstring PathOf(const Screen& screen) const
    {
        return L"\\\\?\\" + screen.instance + L"#{e6f07b5f-ee97-4a90-b076-33f57bf4eaa7}";
    }

    /// Functions that answer for the screens, while the object exists.
    DisplayFunctions Functions()
    {
        DisplayFunctions functions;
        functions.getDisplayConfigBufferSizes = [this](UINT32 flags, UINT32* paths, UINT32* modes) -> LONG {
            *paths = static_cast<UINT32>(screens.size()) - (shortAnswers > 0 ? 1 : 0) + (isUnplugged ? 1 : 0);
            *modes = static_cast<UINT32>(screens.size());
            return hasPaths && flags == QDC_ONLY_ACTIVE_PATHS ? ERROR_SUCCESS : ERROR_NOT_SUPPORTED;
        };
        functions.queryDisplayConfig = [this](UINT32, UINT32* pathCount, DISPLAYCONFIG_PATH_INFO* paths,
                                              UINT32*, DISPLAYCONFIG_MODE_INFO* modes, auto) -> LONG {
            if (*pathCount < screens.size())
                return --shortAnswers, ERROR_INSUFFICIENT_BUFFER;
            *pathCount = static_cast<UINT32>(screens.size());
            for (UINT32 place = 0; place < screens.size(); ++place) {
                const Screen& screen = screens[place];
                paths[place] = {};
                paths[place].sourceInfo.adapterId = screen.adapter;
                paths[place].sourceInfo.id = screen.source;
                paths[place].sourceInfo.modeInfoIdx = place;
                paths[place].targetInfo.adapterId = screen.adapter;
                paths[place].targetInfo.id = place;
                paths[place].targetInfo.refreshRate = screen.rate;
                paths[place].targetInfo.outputTechnology =
                    static_cast<DISPLAYCONFIG_VIDEO_OUTPUT_TECHNOLOGY>(screen.technology);
                modes[place] = {};
                modes[place].infoType = DISPLAYCONFIG_MODE_INFO_TYPE_SOURCE;
                modes[place].sourceMode = {screen.width,
                                           screen.height,
                                           static_cast<DISPLAYCONFIG_PIXELFORMAT>(screen.pixelFormat),
                                           {screen.x, screen.y}};
            }
            return ERROR_SUCCESS;
        };
        functions.displayConfigGetDeviceInfo = [this](DISPLAYCONFIG_DEVICE_INFO_HEADER* header) -> LONG {
            if (header->type == DISPLAYCONFIG_DEVICE_INFO_GET_SOURCE_NAME)
                return GiveSourceName(reinterpret_cast<DISPLAYCONFIG_SOURCE_DEVICE_NAME&>(*header));
            const Screen& screen = screens[header->id];
            if (std::memcmp(&header->adapterId, &screen.adapter, sizeof(LUID)) != 0)
                return ERROR_INVALID_PARAMETER;
            if (header->type == DISPLAYCONFIG_DEVICE_INFO_GET_TARGET_NAME) {
                auto& out = *reinterpret_cast<DISPLAYCONFIG_TARGET_DEVICE_NAME*>(header);
                wcscpy(out.monitorFriendlyDeviceName, screen.name.c_str());
                wcscpy(out.monitorDevicePath, PathOf(screen).c_str());
                return ERROR_SUCCESS;
            }
            if (header->type == DISPLAYCONFIG_DEVICE_INFO_GET_TARGET_PREFERRED_MODE) {
                auto& mode = *reinterpret_cast<DISPLAYCONFIG_TARGET_PREFERRED_MODE*>(header);
                mode.width = screen.preferred.Width();
                mode.height = screen.preferred.Height();
                return screen.preferred.HasValue() ? ERROR_SUCCESS : ERROR_NOT_SUPPORTED;
            }
            if (static_cast<int>(header->type) == 15 && screen.isHdr2 >= 0) {
                reinterpret_cast<UINT32*>(header + 1)[0] = screen.isHdr2 != 0 ? 0x1F : 0x0F;
                return ERROR_SUCCESS;
            }
            if (screen.isHdr < 0 || header->type != DISPLAYCONFIG_DEVICE_INFO_GET_ADVANCED_COLOR_INFO)
                return ERROR_NOT_SUPPORTED;
            reinterpret_cast<DISPLAYCONFIG_GET_ADVANCED_COLOR_INFO*>(header)->advancedColorSupported =
                screen.isHdr != 0;
            return ERROR_SUCCESS;
        };
        functions.enumDisplayDevices = [this](LPCWSTR adapter, DWORD index, DISPLAY_DEVICEW* out, DWORD) {
            // An adapter for each screen, and one whose driver mirrors the first.
            if (!hasDevices || out->cb != sizeof(*out) || index > (adapter == nullptr ? screens.size() : 0))
                return FALSE;
            wcscpy(out->DeviceName, std::to_wstring(index).c_str());
            out->StateFlags = DISPLAY_DEVICE_ATTACHED_TO_DESKTOP;
            if (adapter == nullptr && index == screens.size())
                out->StateFlags |= DISPLAY_DEVICE_MIRRORING_DRIVER;
            if (adapter == nullptr)
                return TRUE;
            const Screen& screen = screens[std::stoul(adapter)];
            wcscpy(out->DeviceString, (screen.device.empty() ? deviceName : screen.device).c_str());
            wcscpy(out->DeviceID, PathOf(screen).c_str());
            out->StateFlags = DISPLAY_DEVICE_ACTIVE;
            return TRUE;
        };
        functions.enumDisplaySettings = [this](LPCWSTR adapter, DWORD number, DEVMODEW* mode, DWORD flags) {
            const Screen& screen = screens[std::stoul(adapter)];
            if (mode->dmSize != sizeof(*mode) || flags != 0)
                return FALSE;
            if (number != ENUM_CURRENT_SETTINGS)
                return GiveMode(screen, number, *mode);
            mode->dmPosition = {screen.x, screen.y};
            mode->dmPelsWidth = screen.width;
            mode->dmPelsHeight = screen.height;
            mode->dmBitsPerPel = 32;
            mode->dmDisplayFrequency = screen.rate.Denominator == 0 ? 1 : screen.rate.Numerator;
            return TRUE;
        };
        functions.listMonitors = [this] {
            std::vector<MONITORINFO> monitors;
            for (const Screen& screen : screens) {
                const RECT place = {screen.x, screen.y, screen.x + static_cast<LONG>(screen.width),
                                    screen.y + static_cast<LONG>(screen.height)};
                monitors.push_back(
                    {sizeof(MONITORINFO), place, place, screen.x == 0 ? MONITORINFOF_PRIMARY : 0UL});
            }
            return monitors;
        };
        functions.getSystemMetrics = [this](int index) { return index == SM_REMOTESESSION && isRemote; };
        functions.getSession = [this] { return session; };
        functions.getPrimaryDpi = [this] { return dpi; };
        return functions;
    }

private:
    /// A source's device has the number of the first screen that shows it.
    LONG GiveSourceName(DISPLAYCONFIG_SOURCE_DEVICE_NAME& name) const
    {
        for (std::size_t place = 0; place < screens.size(); ++place) {
            if (screens[place].source != name.header.id ||
                std::memcmp(&screens[place].adapter, &name.header.adapterId, sizeof(LUID)) != 0)
                continue;
            wcscpy(name.viewGdiDeviceName, std::to_wstring(place).c_str());
            return ERROR_SUCCESS;
        }
        return ERROR_INVALID_PARAMETER;
    }

    static BOOL GiveMode(const Screen& screen, DWORD number, DEVMODEW& mode)
    {
        const Lines modes = Split(screen.modes, L' ');
        if (number >= modes.size())
            return FALSE;
        Resolution resolution;
        resolution.Initialize(modes[number].c_str());
        mode.dmPelsWidth = resolution.Width();
        mode.dmPelsHeight = resolution.Height();
        mode.dmDisplayFrequency = std::stoul(modes[number].substr(modes[number].find(L'@') + 1));
        return TRUE;
    }
};

}  // namespace kel::test
