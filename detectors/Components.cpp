#include "detectors/Components.h"

#include "detectors/Applications.h"
#include "detectors/Bios.h"
#include "detectors/Browser.h"
#include "detectors/CDRom.h"
#include "detectors/CPU.h"
#include "detectors/Chassis.h"
#include "detectors/DVD.h"
#include "detectors/DirectX.h"
#include "detectors/GPU.h"
#include "detectors/Graphics.h"
#include "detectors/HardDrive.h"
#include "detectors/LogicalDrive.h"
#include "detectors/Monitor.h"
#include "detectors/MotherBoard.h"
#include "detectors/NetworkDevice.h"
#include "detectors/OS.h"
#include "detectors/Ram.h"
#include "detectors/SCSI.h"
#include "detectors/Software.h"
#include "detectors/Sound.h"
#include "diag/LogScope.h"

namespace kel {

void Components::Init()
{
    static bool isDone = false;
    if (isDone)
        return;
    isDone = true;

    const LogScope trace(L"kel::Components::Init", LogScope::Tracing());
    detectors.clear();
    Add<CPU>();
    Add<GPU>();
    Add<Bios>();
    Add<CDRom>();
    Add<Chassis>();
    Add<DirectX>();
    Add<DVD>();
    Add<Graphics>();
    Add<HardDrive>();
    Add<LogicalDrive>();
    Add<MotherBoard>();
    Add<NetworkDevice>();
    Add<OS>();
    Add<Ram>();
    Add<Sound>();
    Add<Software>();
    Add<Browser>();
    Add<Monitor>();
    Add<Applications>();
    Add<SCSI>();
}

void Components::DetectAll()
{
    static bool isDone = false;
    if (isDone)
        return;
    isDone = true;

    Init();
    for (Component* detector : detectors)
        detector->Detect();
}

}  // namespace kel
