#pragma once

#include "detectors/Component.h"

namespace kel {

/// The detector of SCSI and RAID controllers. It stores no values yet.
class SCSI : public Component {
public:
    bool Detect() override;
};

}  // namespace kel
