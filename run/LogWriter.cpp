#include "run/LogWriter.h"

#include <algorithm>
#include <utility>

#include "platform/Handles.h"
#include "service/Utf8.h"

namespace kel {

namespace {

constexpr std::size_t MaxPending = 262144, MaxLine = 16384;  // characters
constexpr DWORD MaxFlush = 50;                               // milliseconds
constexpr DWORD RefusalPause = 1000;  // milliseconds until a file that refused lines is tried again

class Locked {
public:
    explicit Locked(SRWLOCK& newLock) noexcept : lock(newLock) { AcquireSRWLockExclusive(&lock); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;
    ~Locked() { ReleaseSRWLockExclusive(&lock); }

private:
    SRWLOCK& lock;
};

/// The date and the process, since a file has the lines of several days and processes.
std::wstring LineStart()
{
    SYSTEMTIME now;
    GetLocalTime(&now);
    const auto twoDigits = [](int number) {
        return std::wstring(number < 10 ? L"-0" : L"-") + std::to_wstring(number);
    };
    return std::to_wstring(now.wYear) + twoDigits(now.wMonth) + twoDigits(now.wDay) + L" " +
           std::to_wstring(GetCurrentProcessId()) + L" ";
}

}  // namespace

LogWriter::LogWriter(LogFile logFile, int maxLevel) : file(std::move(logFile)), level(maxLevel) {}

bool LogWriter::Start() noexcept
{
    const OwnedHandle thread(CreateThread(nullptr, 0, &Work, this, 0, nullptr));
    return thread != nullptr;
}

void LogWriter::Write(int lineLevel, std::wstring_view line) noexcept
{
    if (lineLevel > level || line.empty())
        return;
    const Locked locked(guard);
    try {
        AddLine(line);
    } catch (...) {
        ++lostLines;  // out of memory
    }
    WakeConditionVariable(&hasLines);
}

void LogWriter::AddLine(std::wstring_view line)
{
    const bool isCut = line.size() > MaxLine;
    line = line.substr(0, line.ends_with(L'\n') && !isCut ? line.size() - 1 : MaxLine);
    std::wstring text = LineStart().append(line);
    std::ranges::replace_if(
        text, [](wchar_t c) { return c < L' ' || c == L'\x7F'; }, L' ');
    text += isCut ? L"...\r\n" : L"\r\n";
    if (pending.size() + text.size() > MaxPending) {
        ++lostLines;
        return;
    }
    pending += text;
    ++pendingLines;
}

void LogWriter::Flush() noexcept
{
    const Locked locked(guard);
    const ULONGLONG end = GetTickCount64() + MaxFlush;
    while (!isSlow && (isWriting || pendingLines > 0)) {
        const ULONGLONG now = GetTickCount64();
        isSlow = now >= end;
        if (!isSlow)
            SleepConditionVariableSRW(&isIdle, &guard, static_cast<DWORD>(end - now), 0);
    }
}

DWORD WINAPI LogWriter::Work(LPVOID writer)
{
    for (;;)
        static_cast<LogWriter*>(writer)->WriteNext();
}

void LogWriter::WriteNext()
{
    std::wstring text;
    std::size_t lines = 0, lost = 0;
    {
        const Locked locked(guard);
        while (pendingLines == 0)
            SleepConditionVariableSRW(&hasLines, &guard, INFINITE, 0);
        text.swap(pending);
        lines = std::exchange(pendingLines, 0);
        lost = std::exchange(lostLines, 0);
        isWriting = true;
    }
    bool isWritten = false;
    try {
        if (lost > 0)
            text += LineStart() + L"lines that were lost: " + std::to_wstring(lost) + L"\r\n";
        isWritten = file.Append(ToUtf8(text));
    } catch (...) {
        isWritten = false;  // out of memory
    }
    {
        const Locked locked(guard);
        isWriting = false;
        isSlow = !isWritten || (isSlow && pendingLines > 0);
        lostLines += isWritten ? 0 : lines + lost;
        WakeAllConditionVariable(&isIdle);
    }
    if (!isWritten)
        Sleep(RefusalPause);
}

}  // namespace kel
