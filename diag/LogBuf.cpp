#include "diag/LogBuf.h"

#include <windows.h>

#include <algorithm>

namespace kel {

LogBuf::~LogBuf()
{
    try {
        LogBuf::sync();
    } catch (...) {
        // Out of memory: the last line is lost, as a destructor cannot report it.
    }
}

void LogBuf::Emit(const wchar_t* line)
{
    if (line == nullptr)
        return;
    const std::wstring_view characters(line);
    OutputDebugStringW(line);
    text += characters;
    if (sink != nullptr)
        sink->Write(lineLevel, characters);
    hasContent = hasContent || !characters.empty();
}

int LogBuf::sync()
{
    std::wstring line = str();
    std::ranges::replace(line, L'\0', L' ');  // a zero would end the line early
    str(std::wstring());  // first, so that a line that a sink refuses is not repeated with the next
    Emit(line.c_str());
    return 0;
}

}  // namespace kel
