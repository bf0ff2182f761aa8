#include "detectors/Components.h"

#include <memory>

#include "detectors/Detectors.h"
#include "diag/LogScope.h"

namespace kel {

namespace {

template <typename Detector>
std::unique_ptr<Component> Make()
{
    return std::make_unique<Detector>();
}

/// A detector by the name of its class.
struct Row {
    const char* name;
    std::unique_ptr<Component> (*make)();
    StoredFacts (*listFacts)();
};

template <typename Detector>
constexpr Row RowOf(const char* name)
{
    return {name, &Make<Detector>, &Detector::ListFacts};
}

/// The detectors in the order in which they run.
constexpr Row Rows[] = {
    RowOf<CPU>("CPU"),
    RowOf<GPU>("GPU"),
    RowOf<Bios>("Bios"),
    RowOf<CDRom>("CDRom"),
    RowOf<Chassis>("Chassis"),
    RowOf<DirectX>("DirectX"),
    RowOf<DVD>("DVD"),
    RowOf<Graphics>("Graphics"),
    RowOf<HardDrive>("HardDrive"),
    RowOf<LogicalDrive>("LogicalDrive"),
    RowOf<MotherBoard>("MotherBoard"),
    RowOf<NetworkDevice>("NetworkDevice"),
    RowOf<OS>("OS"),
    RowOf<Ram>("Ram"),
    RowOf<Sound>("Sound"),
    RowOf<Software>("Software"),
    RowOf<Browser>("Browser"),
    RowOf<Monitor>("Monitor"),
    RowOf<Applications>("Applications"),
    RowOf<SCSI>("SCSI"),
};

/// Sets the flag before the work, so that a page that calls in while a detector waits does not start the
/// detectors again; clears it when the work throws, as when memory is short, so that the next call retries.
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
        std::vector<std::unique_ptr<Component>> made;
        for (const Row& row : Rows)
            made.push_back(row.make());
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
        for (std::size_t place = 0; place < detectors.size(); ++place) {
            if (listener)
                listener(Rows[place].name);
            detectors[place]->Detect();
        }
        if (listener)
            listener(nullptr);
    });
}

std::vector<Components::Listed> Components::ListFacts()
{
    std::vector<Listed> listed;
    for (const Row& row : Rows)
        listed.push_back({row.name, row.listFacts()});
    return listed;
}

}  // namespace kel
