#pragma once

#include <boost/core/noncopyable.hpp>
#include <vector>

#include "detectors/Component.h"

namespace kel {

/// The fixed, ordered list of all detectors. The detectors live until the process ends.
class Components : boost::noncopyable {
public:
    virtual ~Components() = default;

    /// Builds the list; once per process.
    void Init();

    /// Builds the list and runs every detector, one after the other; once per process.
    void DetectAll();

private:
    std::vector<Component*> detectors;
};

}  // namespace kel
