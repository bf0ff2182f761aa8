#include "detectors/Detectors.h"
#include "detectors/DriverIds.h"
#include "detectors/Facts.h"
#include "detectors/ProductFacts.h"
#include "detectors/ProductTables.h"
#include "detectors/ScsiControllers.h"
#include "probes/Attempt.h"
#include "values/Version.h"

namespace kel {

namespace {

struct Drivers {
    std::optional<Version> gpu;
    std::optional<Version> sound;
    std::optional<Version> network;
    std::optional<Version> scsi;
};

constexpr FactTable Facts(Fact{72900, &Drivers::gpu}, Fact{72901, &Drivers::sound},
                          Fact{72902, &Drivers::network}, Fact{72903, &Drivers::scsi});

std::optional<Version> VersionOf(const std::wstring& text)
{
    return text.empty() ? std::nullopt : std::optional(Version(text));
}

/// The version that the device's own detector has stored.
std::optional<Version> StoredVersion(unsigned id)
{
    const SystemValue* const value = Session::Current().Values().TryGetValue(SystemValueID(GroupID(id)));
    return value != nullptr ? VersionOf(value->Text()) : std::nullopt;
}

/// Reads the list itself: the detector of these controllers runs later, and uses the same list.
std::optional<Version> ScsiDriver()
{
    const std::vector<ScsiInfo>& controllers = GetScsiControllers().List();
    return controllers.empty() ? std::nullopt : controllers.front().driverVersion;
}

}  // namespace

bool Software::Detect()
{
    return Detect(SoftwareFunctions::OfSystem());
}

bool Software::Detect(const SoftwareFunctions& functions)
{
    return Guarded(L"kel::Software::Detect", L"Error in Software detection.", [&functions] {
        Drivers drivers;
        Facts.Store(drivers);
        drivers.gpu = StoredVersion(GpuDriver);
        drivers.sound = StoredVersion(SoundDriver);
        drivers.network = StoredVersion(NetworkDriver);
        Attempt(L"Error in the list of controllers.", [&drivers] { drivers.scsi = ScsiDriver(); });
        Facts.Store(drivers);
        NoteOrigin(72900, GpuDriver);
        NoteOrigin(72901, SoundDriver);
        NoteOrigin(72902, NetworkDriver);
        StoreNewest(L"Software", functions, RuntimeTable());
    });
}

StoredFacts Software::ListFacts()
{
    StoredFacts facts = CollectFacts(Facts);
    AddFacts(facts, RuntimeTable());
    return facts;
}

}  // namespace kel
