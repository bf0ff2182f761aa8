#pragma once

#include "detectors/Component.h"

namespace kel {

/// The detector of memory: installed and available physical memory and the process's address space, in bytes,
/// from `GlobalMemoryStatusEx`, or `GlobalMemoryStatus` where the system lacks it.
class Ram : public Component {
public:
    bool Detect() override;
};

}  // namespace kel
