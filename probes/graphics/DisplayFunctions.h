#pragma once

#include <windows.h>

#include <boost/function.hpp>
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

    /// The system's own. The rectangles of monitors are in physical pixels; empty where the system scales
    /// them for this process and offers no way to switch that off.
    static DisplayFunctions OfSystem();
};

}  // namespace kel
