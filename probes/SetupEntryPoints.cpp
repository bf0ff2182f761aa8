#include "probes/SetupEntryPoints.h"

namespace kel {

namespace {

template <typename Function>
void Look(const OwnedLibrary& library, const char* name, Function*& function)
{
    function = FindFunction<Function>(library, name);
}

}  // namespace

bool SetupEntryPoints::Load(SetupEntryPoints& table)
{
    table.library.reset(LoadLibraryW(L"setupapi.dll"));
    if (!table.library)
        return false;
    Look(table.library, "SetupDiGetClassDevsW", table.getClassDevs);
    Look(table.library, "SetupDiEnumDeviceInfo", table.enumDeviceInfo);
    Look(table.library, "SetupDiGetDeviceRegistryPropertyW", table.getDeviceRegistryProperty);
    Look(table.library, "SetupDiGetDeviceInstanceIdW", table.getDeviceInstanceId);
    Look(table.library, "SetupFindFirstLineW", table.findFirstLine);
    Look(table.library, "SetupFindNextLine", table.findNextLine);
    Look(table.library, "SetupGetLineTextW", table.getLineText);
    Look(table.library, "SetupOpenInfFileW", table.openInfFile);
    Look(table.library, "SetupCloseInfFile", table.closeInfFile);
    Look(table.library, "SetupDiOpenDevRegKey", table.openDevRegKey);
    Look(table.library, "SetupDiDestroyDeviceInfoList", table.destroyDeviceInfoList);
    return true;
}

bool SetupEntryPoints::IsComplete() const
{
    return getClassDevs && enumDeviceInfo && getDeviceRegistryProperty && getDeviceInstanceId &&
           findFirstLine && findNextLine && getLineText && openInfFile && closeInfFile && openDevRegKey &&
           destroyDeviceInfoList;
}

}  // namespace kel
