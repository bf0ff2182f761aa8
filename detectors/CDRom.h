#pragma once

#include "detectors/Component.h"

namespace kel {

/// The detector of CD-ROM drives. It stores no values yet.
class CDRom : public Component {
public:
    bool Detect() override;
};

}  // namespace kel
