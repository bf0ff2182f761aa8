#pragma once

#include "detectors/Component.h"

namespace kel {

/// The detector of browsers. It stores no values yet.
class Browser : public Component {
public:
    Browser() { Browser::Initialize(); }

    bool Detect() override;
    void Initialize() override;
};

}  // namespace kel
