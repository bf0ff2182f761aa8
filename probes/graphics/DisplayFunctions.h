#pragma once

#include <windows.h>

#include <boost/function.hpp>
#include <optional>
#include <vector>

namespace kel {

/// The system's functions for displays; a test replaces them.
struct DisplayFunctions {
    boost::function<LONG(UINT32, UINT32*, UINT32*)> getDisplayConfigBufferSizes;
    boost::function<decltype(QueryDisplayConfig)> queryDisplayConfig;
    boost::function<LONG(DISPLAYCONFIG_DEVICE_INFO_HEADER*)> displayConfigGetDeviceInfo;
    boost::function<BOOL(LPCWSTR, DWORD, DISPLAY_DEVICEW*, DWORD)> enumDisplayDevices;
    boost::function<BOOL(LPCWSTR, DWORD, DEVMODEW*, DWORD)> enumDisplaySettings;  ///< EnumDisplaySettingsExW
    boost::function<std::vector<MONITORINFO>()> listMonitors;                     ///< EnumDisplayMonitors
    boost::function<int(int)> getSystemMetrics;
    /// The number of this process's session (ProcessIdToSessionId); nullopt when it is not known.
    boost::function<std::optional<DWORD>()> getSession;
    /// The dots per inch that Windows draws the primary display's texts for (GetDpiForMonitor), 96 for a
    /// scale of 100 percent; nullopt where the system scales what this process sees.
    boost::function<std::optional<UINT>()> getPrimaryDpi;

    /// The system's own. The rectangles of monitors are in physical pixels; empty where the system scales
    /// them for this process and offers no way to switch that off.
    static DisplayFunctions OfSystem();
};

}  // namespace kel
