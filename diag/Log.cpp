#include "diag/Log.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <iomanip>
#include <memory>
#include <sstream>

#include "diag/ProcessInstance.h"
#include "diag/Seconds.h"

namespace kel {

namespace {

constexpr int MaximumDepth = 10;
constexpr std::array<const wchar_t*, 6> LevelWords = {L"", L"ERR", L"WARN", L"TRACE", L"MARK", L"DUMP"};

const wchar_t* LevelWord(int lineLevel)
{
    const auto index = static_cast<std::size_t>(lineLevel);
    return lineLevel > 0 && index < LevelWords.size() ? LevelWords[index] : L"";
}

}  // namespace

Log& Log::Instance()
{
    return ProcessInstance<Log>();
}

Log::Log() : std::basic_ostream<wchar_t>(nullptr), buffer(std::make_unique<LogBuf>())
{
    rdbuf(buffer.get());
}

Log::~Log() = default;

void Log::SetLevel(int newLevel)
{
    level = std::min<int>(newLevel, LogMaximum);
}

void Log::DropLine()
{
    buffer->str(std::wstring());
    clear();
}

int Log::Enter()
{
    depth = std::min(depth + 1, MaximumDepth);
    return depth;
}

void Log::Exit()
{
    depth = std::max(depth - 1, 0);
}

const std::wstring& Log::Prefix(int lineLevel)
{
    static std::wstring prefix;

    SYSTEMTIME now;
    GetLocalTime(&now);
    std::wstring seconds = L"0";
    const std::uint32_t tick = GetTickCount();
    if (startTick == 0)
        startTick = tick;
    else
        seconds = SecondsText(tick - startTick);

    std::wostringstream text;
    text << std::setfill(L'0') << std::right << std::setw(2) << now.wHour << L':' << std::setw(2)
         << now.wMinute << L':' << std::setw(2) << now.wSecond << L"  ";
    text << std::left << std::setw(6) << seconds << L"  ";
    text << std::setfill(L' ') << std::setw(5) << LevelWord(lineLevel) << L" | ";
    for (int scope = 0; scope < depth; ++scope)
        text << L". ";
    prefix = text.str();
    buffer->SetLineLevel(lineLevel);
    return prefix;
}

}  // namespace kel
