#pragma once

#include <fstream>
#include <memory>
#include <sstream>
#include <string>

namespace kel {

/// Stream buffer of the log: on every flush the finished line goes to the debugger output
/// (`OutputDebugStringW`), to the optional file, and to the copy kept in memory.
class LogBuf : public std::basic_stringbuf<wchar_t> {
public:
    LogBuf() = default;
    LogBuf(const LogBuf&) = delete;
    LogBuf& operator=(const LogBuf&) = delete;
    ~LogBuf() override;

    /// Adds a file sink. It receives raw UTF-16LE without a byte-order mark and is closed with the buffer.
    /// @param sink a stream opened for binary output; null removes the sink
    void SetFile(std::unique_ptr<std::ofstream> sink);

    /// Everything emitted so far.
    const std::wstring& Text() const { return text; }

    /// Whether any non-empty text has been emitted.
    bool HasContent() const { return hasContent; }

    /// Writes a text to all sinks; a null text is ignored.
    void Emit(const wchar_t* line);

protected:
    int sync() override;

private:
    std::unique_ptr<std::ofstream> file;
    std::wstring text;
    bool hasContent = false;
};

}  // namespace kel
