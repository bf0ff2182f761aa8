#pragma once

#include "detectors/Component.h"
#include "probes/BiosInfo.h"

namespace kel {

/// The detector of the BIOS: version and date from the registry, name and manufacturer from WMI.
class Bios : public Component {
public:
    bool Detect() override;
};

/// Takes what the target lacks from a source.
void MergeBiosInfo(BiosInfo& target, const BiosInfo& source);

}  // namespace kel
