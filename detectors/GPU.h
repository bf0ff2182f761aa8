#pragma once

#include "detectors/Component.h"

namespace kel {

/// The detector of the graphics adapters, merged from all graphics interfaces. It stores no values yet.
class GPU : public Component {
public:
    bool Detect() override;
};

}  // namespace kel
