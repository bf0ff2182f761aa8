#include "program/text/Output.h"

#include <algorithm>
#include <string>
#include <utility>

#include "program/text/UserError.h"
#include "service/Utf8.h"

namespace kel::program {

namespace {

constexpr int UsualWidth = 80;
constexpr int MinWidth = 40;
constexpr std::size_t MaxWaiting = 65536;  // bytes
constexpr std::size_t MaxConsole = 8000;   // characters at once; older consoles take 64 KB

WORD ForegroundOf(Colour colour)
{
    switch (colour) {
        case Colour::Good:
            return FOREGROUND_GREEN | FOREGROUND_INTENSITY;
        case Colour::Bad:
            return FOREGROUND_RED | FOREGROUND_INTENSITY;
        case Colour::Unsure:
            return FOREGROUND_RED | FOREGROUND_GREEN | FOREGROUND_INTENSITY;
        default:
            return 0;
    }
}

void Check(BOOL isWritten)
{
    if (!isWritten)
        throw UserError("The output could not be written (error " + std::to_string(GetLastError()) +
                        "). Is there room on the disk, and does the next program still read?");
}

}  // namespace

Output& Output::Standard()
{
    static Output output(GetStdHandle(STD_OUTPUT_HANDLE));
    return output;
}

Output& Output::Error()
{
    static Output output(GetStdHandle(STD_ERROR_HANDLE));
    return output;
}

Output::Output(HANDLE streamHandle) : handle(streamHandle)
{
    DWORD mode = 0;
    isConsole = handle != nullptr && GetConsoleMode(handle, &mode);
    CONSOLE_SCREEN_BUFFER_INFO screen = {};
    if (isConsole && GetConsoleScreenBufferInfo(handle, &screen))
        usualColours = screen.wAttributes;
}

int Output::Width() const
{
    CONSOLE_SCREEN_BUFFER_INFO screen = {};
    if (!isConsole || !GetConsoleScreenBufferInfo(handle, &screen))
        return UsualWidth;
    // The last column stays free: a character there makes the console begin a line of its own.
    return std::max(screen.srWindow.Right - screen.srWindow.Left, MinWidth);
}

void Output::Write(std::string_view text, Colour colour)
{
    if (handle == nullptr || handle == INVALID_HANDLE_VALUE)
        return;
    if (isConsole) {
        WriteToConsole(text, colour);
        return;
    }
    waiting += text;
    if (waiting.size() > MaxWaiting)
        Flush();
}

void Output::WriteLine(std::string_view text, Colour colour)
{
    Write(text, colour);
    Write("\r\n");
}

void Output::Flush()
{
    const std::string bytes = std::exchange(waiting, {});
    for (std::size_t start = 0; start < bytes.size();) {
        DWORD count = 0;
        Check(WriteFile(handle, bytes.data() + start, static_cast<DWORD>(bytes.size() - start), &count,
                        nullptr));
        start += count;
    }
}

void Output::WriteToConsole(std::string_view text, Colour colour)
{
    if (const WORD foreground = ForegroundOf(colour); foreground != 0)
        SetConsoleTextAttribute(handle, static_cast<WORD>((usualColours & 0xF0) | foreground));
    else if (colour == Colour::Strong)
        SetConsoleTextAttribute(handle, usualColours | FOREGROUND_INTENSITY);
    const std::wstring wide = FromUtf8(text);
    for (std::size_t start = 0; start < wide.size();) {
        DWORD count = 0;
        Check(WriteConsoleW(handle, wide.data() + start,
                            static_cast<DWORD>(std::min(wide.size() - start, MaxConsole)), &count, nullptr));
        start += count;
    }
    if (colour != Colour::Plain)
        SetConsoleTextAttribute(handle, usualColours);
}

}  // namespace kel::program
