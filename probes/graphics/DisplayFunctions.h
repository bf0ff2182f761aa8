#pragma once

#include <windows.h>

#include <boost/function.hpp>
#include <vector>

namespace kel {

/// The functions that tell of displays; a test puts its own in their place.
struct DisplayFunctions {
    boost::function<LONG(UINT32, UINT32*, UINT32*)> getDisplayConfigBufferSizes;
    boost::function<decltype(QueryDisplayConfig)> queryDisplayConfig;
    boost::function<LONG(DISPLAYCONFIG_DEVICE_INFO_HEADER*)> displayConfigGetDeviceInfo;
    boost::function<BOOL(LPCWSTR, DWORD, DISPLAY_DEVICEW*, DWORD)> enumDisplayDevices;
    boost::function<BOOL(LPCWSTR, DWORD, DEVMODEW*, DWORD)> enumDisplaySettings;  ///< EnumDisplaySettingsExW
    boost::function<std::vector<MONITORINFO>()> listMonitors;                     ///< EnumDisplayMonitors
    boost::function<int(int)> getSystemMetrics;

    /// The system's own. The rectangles of monitors are in physical pixels; empty where the system would
    /// scale them for this process and cannot be told not to.
    static DisplayFunctions OfSystem();
};

}  // namespace kel
