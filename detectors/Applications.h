#pragma once

#include "detectors/Component.h"

namespace kel {

/// The detector of selected applications. It stores no values yet.
class Applications : public Component {
public:
    Applications() { Applications::Initialize(); }

    bool Detect() override;
    void Initialize() override;
};

}  // namespace kel
