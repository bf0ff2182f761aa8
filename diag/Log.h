#pragma once

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>

#include "diag/LogBuf.h"

namespace kel {

/// Levels of the log. A line is written when its level is at most the level that is set.
enum LogLevel : int {
    LogOff = 0,
    LogError = 1,
    LogWarning = 2,
    LogTrace = 3,
    LogMark = 4,
    LogDump = 5,
    LogMaximum = 7,
};

/// The process-wide diagnostic log: a wide stream whose finished lines go to the debugger and are kept in
/// memory. Not locked: the apartments that use the control take turns.
class Log : public std::basic_ostream<wchar_t> {
public:
    /// The one log of the process, made on first use and never destroyed.
    static Log& Instance();

    Log();
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;
    ~Log() override;

    /// Sets the highest level that is written: at most 7; zero and below turn the log off.
    void SetLevel(int newLevel);
    int GetLevel() const { return level; }

    /// Whether lines of this level are written. Check this before composing anything costly.
    bool IsEnabled(int lineLevel) const { return lineLevel <= level; }

    /// One scope deeper, at most 10. Returns the new depth.
    int Enter();
    /// One scope back, at least 0.
    void Exit();

    /// The prefix of a line: wall-clock time, seconds since the first line, level word, indentation.
    /// The text is overwritten by the next call. A sink receives the line with this level.
    const std::wstring& Prefix(int lineLevel);

    /// Sends the later lines to a sink, too, which has to live until the process ends.
    void SetSink(LogSink* sink) { buffer->SetSink(sink); }

    /// The whole log so far.
    const std::wstring& GetText() const { return buffer->Text(); }
    bool HasContent() const { return buffer->HasContent(); }

    /// Writes one line when its level is enabled. Nothing is formatted otherwise.
    template <typename... Parts>
    void Write(int lineLevel, const Parts&... parts)
    {
        if (IsEnabled(lineLevel))
            WriteAlways(lineLevel, parts...);
    }

    /// Writes one line whatever level is set.
    template <typename... Parts>
    void WriteAlways(int lineLevel, const Parts&... parts)
    {
        if (!good())
            DropLine();
        *this << Prefix(lineLevel);
        (*this << ... << parts);
        *this << L'\n';
        flush();
    }

private:
    /// Discards a line that could not be written whole, so that it neither silences nor precedes the next
    /// one.
    void DropLine();

    std::unique_ptr<LogBuf> buffer;
    int level = LogOff;
    int depth = 0;
    std::uint32_t startTick = 0;  // milliseconds; 0 until the first prefix
};

/// Writes one line to the process's log.
template <typename... Parts>
void WriteLog(int lineLevel, const Parts&... parts)
{
    Log::Instance().Write(lineLevel, parts...);
}

/// The same for exception handlers: a line that cannot be written is lost, and nothing is thrown.
template <typename... Parts>
void ReportFailure(int lineLevel, const Parts&... parts) noexcept
{
    try {
        WriteLog(lineLevel, parts...);
    } catch (...) {
        // Out of memory; the handler goes on without its line.
    }
}

}  // namespace kel
