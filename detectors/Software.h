#pragma once

#include "detectors/Component.h"

namespace kel {

/// The detector of driver software. It stores no values yet.
class Software : public Component {
public:
    bool Detect() override;
};

}  // namespace kel
