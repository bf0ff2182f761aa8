#pragma once

#include <sstream>
#include <string>

#include "diag/LogSink.h"

namespace kel {

/// Stream buffer of the log: on every flush the finished line goes to the debugger output
/// (`OutputDebugStringW`), to the copy kept in memory, and to a sink if there is one.
class LogBuf : public std::basic_stringbuf<wchar_t> {
public:
    LogBuf() = default;
    LogBuf(const LogBuf&) = delete;
    LogBuf& operator=(const LogBuf&) = delete;
    ~LogBuf() override;

    /// Everything emitted so far.
    const std::wstring& Text() const { return text; }

    /// Whether any non-empty text has been emitted.
    bool HasContent() const { return hasContent; }

    /// Sends the later lines to a sink, too, which has to live as long as the buffer.
    void SetSink(LogSink* newSink) { sink = newSink; }

    /// The level of the line that is being written.
    void SetLineLevel(int level) { lineLevel = level; }

    /// Writes a text to all of them; a null text is ignored.
    void Emit(const wchar_t* line);

protected:
    int sync() override;

private:
    std::wstring text;
    bool hasContent = false;
    LogSink* sink = nullptr;
    int lineLevel = 0;
};

}  // namespace kel
