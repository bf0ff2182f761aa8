#include "detectors/Components.h"

#include <memory>

#include "detectors/Detectors.h"
#include "diag/LogScope.h"

namespace kel {

namespace {

using Detectors = std::vector<std::unique_ptr<Component>>;

template <typename... Kinds>
Detectors Make()
{
    Detectors made;
    (made.push_back(std::make_unique<Kinds>()), ...);
    return made;
}

/// The flag is set before the work, so that a page that is let in while a detector waits does not start them
/// again; and taken back when the work cannot be done, as when memory is short, so that the next call does
/// it.
template <typename Work>
void RunOnce(bool& isDone, Work work)
{
    if (isDone)
        return;
    isDone = true;
    try {
        work();
    } catch (...) {
        isDone = false;
        throw;
    }
}

}  // namespace

void Components::Init()
{
    static bool isDone = false;
    RunOnce(isDone, [this] {
        const LogScope trace(L"kel::Components::Init");
        Detectors made =
            Make<CPU, GPU, Bios, CDRom, Chassis, DirectX, DVD, Graphics, HardDrive, LogicalDrive, MotherBoard,
                 NetworkDevice, OS, Ram, Sound, Software, Browser, Monitor, Applications, SCSI>();
        detectors.clear();
        detectors.reserve(made.size());
        for (auto& detector : made)
            detectors.push_back(detector.release());
    });
}

void Components::DetectAll()
{
    static bool isDone = false;
    RunOnce(isDone, [this] {
        Init();
        for (Component* detector : detectors)
            detector->Detect();
    });
}

}  // namespace kel
