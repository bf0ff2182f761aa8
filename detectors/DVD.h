#pragma once

#include "detectors/Component.h"

namespace kel {

/// The detector of DVD drives. It stores no values yet.
class DVD : public Component {
public:
    bool Detect() override;
};

}  // namespace kel
