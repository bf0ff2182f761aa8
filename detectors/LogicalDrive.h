#pragma once

#include "detectors/Component.h"

namespace kel {

/// The detector of logical drives. It stores no values yet.
class LogicalDrive : public Component {
public:
    LogicalDrive() { LogicalDrive::Initialize(); }

    bool Detect() override;
    void Initialize() override;
};

}  // namespace kel
