#pragma once

#include <windows.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "diag/LogSink.h"
#include "run/LogFile.h"

namespace kel {

/// Writes the log's lines into a file on a thread of its own, so that no caller ever waits for a disk or a
/// network. Lines that come faster than they can be written, and those that the file refuses, are lost, and
/// a later line shows their number. Lives until the process ends, as its thread does.
class LogWriter : public LogSink {
public:
    /// @param maxLevel the highest level of lines that are written
    LogWriter(LogFile logFile, int maxLevel);
    LogWriter(const LogWriter&) = delete;
    LogWriter& operator=(const LogWriter&) = delete;

    /// Starts the thread. Without it every line is lost.
    bool Start() noexcept;

    /// Takes a line: with the date and the process in front, blanks in place of control characters, so that
    /// it stays one line, and cut after 16,384 characters.
    void Write(int level, std::wstring_view line) noexcept override;

    /// Waits until the lines so far are written, for at most 50 milliseconds, so that a host that ends at
    /// once leaves them. Does not wait at all while the file is too slow for that, or refuses lines.
    void Flush() noexcept;

private:
    static DWORD WINAPI Work(LPVOID writer);
    void WriteNext();
    void AddLine(std::wstring_view line);

    LogFile file;
    int level;
    SRWLOCK guard = SRWLOCK_INIT;  // of all below
    CONDITION_VARIABLE hasLines = CONDITION_VARIABLE_INIT, isIdle = CONDITION_VARIABLE_INIT;
    std::wstring pending;
    std::size_t pendingLines = 0, lostLines = 0;
    bool isWriting = false, isSlow = false;
};

}  // namespace kel
