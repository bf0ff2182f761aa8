#include "LineClock.h"

#include <algorithm>

namespace kel::bench {

namespace {

// What the system raises for each OutputDebugStringW: Windows with the wide text, Wine with its narrow form.
constexpr DWORD WideOutput = 0x4001000A;
constexpr DWORD NarrowOutput = 0x40010006;
constexpr ULONG_PTR MaxTextLength = 200;  // characters; the beginning identifies the line

std::vector<LineClock::Line> lines;

/// Keeps the beginning of a line, up to its line break; only plain ASCII is searched in it.
template <typename Character>
void Keep(double now, ULONG_PTR sizeWithTerminator, ULONG_PTR address)
{
    const auto* text = reinterpret_cast<const Character*>(address);
    const auto* end = text + std::min(std::max<ULONG_PTR>(sizeWithTerminator, 1) - 1, MaxTextLength);
    lines.push_back({now, std::string(text, std::find(text, end, static_cast<Character>('\n')))});
}

LONG CALLBACK Note(EXCEPTION_POINTERS* pointers)
{
    const double now = Milliseconds();
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    const ULONG_PTR* information = record.ExceptionInformation;
    if (record.ExceptionCode == WideOutput)
        Keep<wchar_t>(now, information[0], information[1]);
    else if (record.ExceptionCode == NarrowOutput)
        Keep<char>(now, information[0], information[1]);
    return EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

LineClock::LineClock() : handler(AddVectoredExceptionHandler(1, &Note)) {}

LineClock::~LineClock()
{
    RemoveVectoredExceptionHandler(handler);
}

const std::vector<LineClock::Line>& LineClock::Lines() const
{
    return lines;
}

}  // namespace kel::bench
