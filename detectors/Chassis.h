#pragma once

#include "detectors/Component.h"

namespace kel {

/// The detector of the chassis: whether the machine runs on a long-term battery, that is, is portable.
/// Read through `GetPwrCapabilities`.
class Chassis : public Component {
public:
    bool Detect() override;
};

}  // namespace kel
