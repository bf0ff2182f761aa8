#pragma once

#include "detectors/Component.h"

namespace kel {

/// The detector of the processor: merges what `cpuid`, the registry, WMI and the operating system say.
/// Measuring the clock takes one second.
class CPU : public Component {
public:
    bool Detect() override;
};

}  // namespace kel
