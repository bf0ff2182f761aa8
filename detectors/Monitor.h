#pragma once

#include "detectors/Component.h"

namespace kel {

/// The detector of monitors. It stores no values yet.
class Monitor : public Component {
public:
    bool Detect() override;
};

}  // namespace kel
