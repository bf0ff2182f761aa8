#pragma once

#include <string>
#include <vector>

#include "Measure.h"

namespace kel::bench {

/// Notes when each line of debugger output is written in this process, so that the log of the control shows
/// how long each of its steps takes. The output goes on its way afterwards.
class LineClock {
public:
    /// A line and the time at which it was written.
    struct Line {
        double milliseconds;
        std::string text;
    };

    LineClock();
    LineClock(const LineClock&) = delete;
    LineClock& operator=(const LineClock&) = delete;
    ~LineClock();

    const std::vector<Line>& Lines() const;

private:
    void* handler;
};

}  // namespace kel::bench
