#pragma once

#include <windows.h>

#include <devpropdef.h>
#include <setupapi.h>

#include "platform/Library.h"

namespace kel {

/// The functions of the Setup API that the control uses, looked up by name at run time; missing ones are
/// null. A test fills its own table.
struct SetupEntryPoints {
    OwnedLibrary module;
    decltype(&SetupDiGetClassDevsW) getClassDevs = nullptr;
    decltype(&SetupDiEnumDeviceInfo) enumDeviceInfo = nullptr;
    decltype(&SetupDiGetDeviceRegistryPropertyW) getDeviceRegistryProperty = nullptr;
    decltype(&SetupDiGetDevicePropertyW) getDeviceProperty = nullptr;
    decltype(&SetupDiGetDeviceInstanceIdW) getDeviceInstanceId = nullptr;
    decltype(&SetupFindFirstLineW) findFirstLine = nullptr;
    decltype(&SetupFindNextLine) findNextLine = nullptr;
    decltype(&SetupGetLineTextW) getLineText = nullptr;
    decltype(&SetupOpenInfFileW) openInfFile = nullptr;
    decltype(&SetupCloseInfFile) closeInfFile = nullptr;
    decltype(&SetupDiOpenDevRegKey) openDevRegKey = nullptr;
    decltype(&SetupDiDestroyDeviceInfoList) destroyDeviceInfoList = nullptr;

    /// Loads "setupapi.dll" and fills the table from it.
    /// @return whether the library could be loaded; if not, GetLastError has the reason
    static bool Load(SetupEntryPoints& table);

    /// Whether every function was found.
    bool IsComplete() const;
};

}  // namespace kel
