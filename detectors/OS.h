#pragma once

#include "detectors/Component.h"
#include "probes/OSInfo.h"

namespace kel {

/// The detector of the operating system: display name, release and edition flags, version numbers, locale,
/// machine identifier and .NET Framework. It reads only, but for the machine identifier.
class OS : public Component {
public:
    OS() { OS::Initialize(); }

    bool Detect() override;
    void Initialize() override;

    /// The same over other functions than the system's.
    bool Detect(const OSFunctions& functions);

private:
    static void StoreVersionRecord(const OSInfo& info);
    static void GetSupportInformation();
};

}  // namespace kel
