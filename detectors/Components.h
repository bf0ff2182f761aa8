#pragma once

#include <boost/core/noncopyable.hpp>
#include <functional>
#include <utility>
#include <vector>

#include "detectors/Component.h"
#include "detectors/StoredFacts.h"

namespace kel {

/// The fixed, ordered list of all detectors. The detectors live until the process ends.
class Components : boost::noncopyable {
public:
    virtual ~Components() = default;

    /// Builds the list; once per process.
    void Init();

    /// Builds the list and runs every detector, one after the other; once per process.
    void DetectAll();

    /// What is called with the class of each detector before it runs, and with null when all have run. The
    /// control has no such function.
    using Listener = std::function<void(const char* detector)>;
    static void SetListener(Listener newListener) { listener = std::move(newListener); }

    /// The facts that a detector stores.
    struct Listed {
        const char* detector;  ///< its class
        StoredFacts facts;
    };

    /// Lists the facts of every detector, in the order in which they run. Nothing is read.
    static std::vector<Listed> ListFacts();

private:
    inline static Listener listener;
    std::vector<Component*> detectors;
};

}  // namespace kel
