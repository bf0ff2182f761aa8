#pragma once

#include <boost/function.hpp>
#include <concepts>
#include <optional>
#include <vector>

namespace kel {

/// The devices of one kind, listed when a detector first asks for them and kept for the others.
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
        if (!listed)
            listed = make();
        return *listed;
    }

private:
    boost::function<Devices()> make;
    std::optional<Devices> listed;
};

}  // namespace kel
