#pragma once

#include <string_view>

namespace kel {

/// Receives the log's finished lines besides the debugger and the memory.
class LogSink {
public:
    virtual ~LogSink() = default;

    /// Must not wait: callers hold up the host's thread.
    virtual void Write(int level, std::wstring_view line) noexcept = 0;
};

}  // namespace kel
