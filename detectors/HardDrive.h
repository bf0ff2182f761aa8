#pragma once

#include "detectors/Component.h"

namespace kel {

/// The detector of hard drives. It stores no values yet.
class HardDrive : public Component {
public:
    HardDrive() { HardDrive::Initialize(); }

    bool Detect() override;
    void Initialize() override;
};

}  // namespace kel
