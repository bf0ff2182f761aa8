#pragma once

#include "detectors/Component.h"

namespace kel {

/// The detector of sound devices. It stores no values yet.
class Sound : public Component {
public:
    bool Detect() override;
};

}  // namespace kel
