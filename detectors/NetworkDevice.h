#pragma once

#include "detectors/Component.h"

namespace kel {

/// The detector of the network: the download rate of the connection, measured only when the service wants it,
/// since it costs the visitor a download. Adapters store no values yet.
class NetworkDevice : public Component {
public:
    bool Detect() override;
};

}  // namespace kel
