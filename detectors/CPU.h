#pragma once

#include "detectors/Component.h"

namespace kel {

/// The detector of the processor. It stores no values yet.
class CPU : public Component {
public:
    bool Detect() override;
};

}  // namespace kel
