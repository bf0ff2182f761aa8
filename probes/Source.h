#pragma once

#include <boost/core/noncopyable.hpp>
#include <string>

namespace kel {

/// Base of the probes. Each reads one information service of the system for all detectors; there is one of
/// each kind in the process, created on first use.
class Source : boost::noncopyable {
public:
    virtual ~Source() = default;

protected:
    Source() = default;

private:
    std::wstring note;  // always empty
};

}  // namespace kel
