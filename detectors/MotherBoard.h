#pragma once

#include "detectors/Component.h"

namespace kel {

/// The detector of the motherboard. It stores no values yet.
class MotherBoard : public Component {
public:
    bool Detect() override;
};

}  // namespace kel
