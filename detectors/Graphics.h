#pragma once

#include "detectors/Component.h"

namespace kel {

/// The detector of the graphics capabilities. It stores no values yet.
class Graphics : public Component {
public:
    bool Detect() override;
};

}  // namespace kel
