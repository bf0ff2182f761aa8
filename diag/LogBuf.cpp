#include "diag/LogBuf.h"

#include <windows.h>

#include <algorithm>

namespace kel {

LogBuf::~LogBuf()
{
    try {
        LogBuf::sync();
    } catch (...) {
        // The last line is lost with the memory that it needed; a destructor has nobody to tell.
    }
}

void LogBuf::Emit(const wchar_t* line)
{
    if (line == nullptr)
        return;
    const std::wstring_view characters(line);
    OutputDebugStringW(line);
    text += characters;
    hasContent = hasContent || !characters.empty();
}

int LogBuf::sync()
{
    std::wstring line = str();
    std::ranges::replace(line, L'\0', L' ');  // would end the line before its end, and join it with the next
    str(std::wstring());  // first, so that a line that a sink refuses is not written again with the next
    Emit(line.c_str());
    return 0;
}

}  // namespace kel
