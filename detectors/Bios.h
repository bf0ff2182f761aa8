#pragma once

#include "detectors/Component.h"

namespace kel {

/// The detector of the BIOS. It stores no values yet.
class Bios : public Component {
public:
    bool Detect() override;
};

}  // namespace kel
