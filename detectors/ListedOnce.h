#pragma once

#include <boost/function.hpp>
#include <concepts>
#include <optional>
#include <vector>

#include "diag/SourceFailures.h"

namespace kel {

/// The devices of one kind, listed when a detector first asks for them and kept for the others. Each detector
/// that asks for them gets the failures of the listing as well.
template <typename Device>
class ListedOnce {
public:
    using Devices = std::vector<Device>;

    /// @param newMake lists the devices
    template <std::invocable Make>
    explicit ListedOnce(const Make& newMake) : make(newMake)
    {
    }

    const Devices& List()
    {
        if (!listed) {
            const FailureScope scope;
            listed = make();
            failures = scope.Found();
        }
        FailureScope::Note(failures);
        return *listed;
    }

private:
    boost::function<Devices()> make;
    std::optional<Devices> listed;
    Failures failures;
};

}  // namespace kel
