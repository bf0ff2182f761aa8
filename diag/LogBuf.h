#pragma once

#include <sstream>
#include <string>

namespace kel {

/// Stream buffer of the log: on every flush the finished line goes to the debugger output
/// (`OutputDebugStringW`) and to the copy kept in memory.
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

    /// Writes a text to both; a null text is ignored.
    void Emit(const wchar_t* line);

protected:
    int sync() override;

private:
    std::wstring text;
    bool hasContent = false;
};

}  // namespace kel
