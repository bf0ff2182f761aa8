#pragma once

#include "detectors/Component.h"

namespace kel {

/// The detector of the DirectX level. It stores no values yet.
class DirectX : public Component {
public:
    bool Detect() override;
};

}  // namespace kel
