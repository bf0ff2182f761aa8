#include "detectors/Detectors.h"
#include "detectors/Facts.h"
#include "probes/setup/SetupLib.h"
#include "probes/system/Battery.h"

namespace kel {

namespace {

struct ChassisInfo {
    bool isPortable = false;
    std::optional<std::int32_t> cameras;
    std::int32_t touchPoints = 0;
    bool hasPen = false;
    std::optional<bool> hasBluetooth;
};

constexpr FactTable Facts(Fact{71094, &ChassisInfo::isPortable}, Fact{73470, &ChassisInfo::cameras},
                          Fact{73471, &ChassisInfo::touchPoints}, Fact{73472, &ChassisInfo::hasPen},
                          Fact{73473, &ChassisInfo::hasBluetooth});

}  // namespace

bool Chassis::Detect()
{
    return Detect(ChassisFunctions::OfSystem());
}

bool Chassis::Detect(const ChassisFunctions& functions)
{
    return Guarded(L"kel::Chassis::Detect", L"Error in Chassis detection.", [&functions] {
        SetupLib& devices = SetupLib::Instance();
        ChassisInfo info;
        info.isPortable = HasLongTermBattery(functions.getPowerCapabilities);
        info.cameras = devices.CountCameras();
        info.touchPoints = functions.getSystemMetrics(SM_MAXIMUMTOUCHES);
        info.hasPen =
            (functions.getSystemMetrics(SM_DIGITIZER) & (NID_INTEGRATED_PEN | NID_EXTERNAL_PEN)) != 0;
        info.hasBluetooth = devices.HasBluetooth();
        Facts.Store(info);
    });
}

StoredFacts Chassis::ListFacts()
{
    return CollectFacts(Facts);
}

}  // namespace kel
