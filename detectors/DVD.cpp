#include "detectors/Detectors.h"
#include "detectors/OpticalDrives.h"

namespace kel {

namespace {

/// Whether any real drive has each ability. Empty when no drive is known to have it and one drive's answer is
/// unknown.
struct DvdInfo {
    std::optional<bool> readsDvds;
    std::optional<bool> writesDvds;
    std::optional<bool> writesDoubleLayer;
    std::optional<bool> readsBluRay;
    std::optional<bool> writesBluRay;
};

constexpr FactTable Facts(Fact{72300, &DvdInfo::readsDvds}, Fact{72301, &DvdInfo::writesDvds},
                          Fact{72302, &DvdInfo::writesDoubleLayer}, Fact{72303, &DvdInfo::readsBluRay},
                          Fact{72304, &DvdInfo::writesBluRay});

DvdInfo AddUp(const std::vector<OpticalDrive>& drives)
{
    OpticalAbilities all{AllAbilities, 0};
    for (const OpticalDrive& drive : drives) {
        if (!IsRealDrive(drive))
            continue;
        all.known &= drive.record.abilities.known;
        all.has |= drive.record.abilities.has;
    }
    all.Raise(all.has);
    return {all.Has(ReadsDvds), all.Has(WritesDvds), all.Has(WritesDoubleLayer), all.Has(ReadsBluRay),
            all.Has(WritesBluRay)};
}

}  // namespace

bool DVD::Detect()
{
    return Detect(GetOpticalDrives());
}

bool DVD::Detect(OpticalDrives& optical)
{
    return Guarded(L"kel::DVD::Detect", L"Error in DVD detection.", [&optical] {
        Facts.Store(AddUp({}));
        const std::vector<OpticalDrive>& drives = optical.List();
        Facts.Store(AddUp(drives));
        for (const OpticalDrive& drive : drives)
            Facts.NoteFailures(drive.record.failures);
    });
}

StoredFacts DVD::ListFacts()
{
    return CollectFacts(Facts);
}

}  // namespace kel
