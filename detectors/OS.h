#pragma once

#include "detectors/Component.h"

namespace kel {

/// The detector of the operating system. It stores no values yet.
class OS : public Component {
public:
    OS() { OS::Initialize(); }

    bool Detect() override;
    void Initialize() override;
};

}  // namespace kel
