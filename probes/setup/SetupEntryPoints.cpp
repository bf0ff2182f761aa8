#include "probes/setup/SetupEntryPoints.h"

namespace kel {

namespace {

template <typename Function>
void Look(const OwnedLibrary& library, const char* name, Function*& function)
{
    function = FindFunction<Function>(library.get(), name);
}

}  // namespace

bool SetupEntryPoints::Load(SetupEntryPoints& table)
{
    table.module.reset(LoadLibraryW(L"setupapi.dll"));
    if (!table.module)
        return false;
    Look(table.module, "SetupDiGetClassDevsW", table.getClassDevs);
    Look(table.module, "SetupDiEnumDeviceInfo", table.enumDeviceInfo);
    Look(table.module, "SetupDiGetDeviceRegistryPropertyW", table.getDeviceRegistryProperty);
    Look(table.module, "SetupDiGetDevicePropertyW", table.getDeviceProperty);
    Look(table.module, "SetupDiGetDeviceInstanceIdW", table.getDeviceInstanceId);
    Look(table.module, "SetupFindFirstLineW", table.findFirstLine);
    Look(table.module, "SetupFindNextLine", table.findNextLine);
    Look(table.module, "SetupGetLineTextW", table.getLineText);
    Look(table.module, "SetupOpenInfFileW", table.openInfFile);
    Look(table.module, "SetupCloseInfFile", table.closeInfFile);
    Look(table.module, "SetupDiOpenDevRegKey", table.openDevRegKey);
    Look(table.module, "SetupDiDestroyDeviceInfoList", table.destroyDeviceInfoList);
    return true;
}

bool SetupEntryPoints::IsComplete() const
{
    return getClassDevs && enumDeviceInfo && getDeviceRegistryProperty && getDeviceProperty &&
           getDeviceInstanceId && findFirstLine && findNextLine && getLineText && openInfFile &&
           closeInfFile && openDevRegKey && destroyDeviceInfoList;
}

}  // namespace kel
