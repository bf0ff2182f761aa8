#pragma once

#include "detectors/Component.h"

namespace kel {

/// The detector of network adapters. It stores no values yet.
class NetworkDevice : public Component {
public:
    bool Detect() override;
};

}  // namespace kel
