#pragma once

#include <string>
#include <vector>

#include "Measure.h"

namespace kel::bench {

/// Records when each line of debugger output is written in this process, so that the control's log shows how
/// long each of its steps takes. The output itself is not affected.
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
