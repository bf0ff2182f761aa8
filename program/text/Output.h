#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace kel::program {

/// How a console shows a text; a file or a pipe gets no colours.
enum class Colour { Plain, Strong, Good, Bad, Unsure };

/// One of the program's streams: UTF-16 to a console, UTF-8 to a file or a pipe.
class Output {
public:
    static Output& Standard();
    static Output& Error();

    /// @param streamHandle of a console, a file or a pipe; may be null or invalid, as where a program has no
    /// such stream, and then takes nothing
    explicit Output(HANDLE streamHandle);
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    bool IsConsole() const { return isConsole; }

    /// The columns of a line: the console's, 80 elsewhere.
    int Width() const;

    /// Writes UTF-8. What goes to a file or a pipe is kept until Flush, or until there is much of it.
    /// @throws UserError when the text cannot be written
    void Write(std::string_view text, Colour colour = Colour::Plain);
    /// The same with a line end behind it.
    void WriteLine(std::string_view text = {}, Colour colour = Colour::Plain);

    /// @throws as above
    void Flush();

private:
    void WriteToConsole(std::string_view text, Colour colour);

    HANDLE handle;
    bool isConsole = false;
    WORD usualColours = 0;
    std::string waiting;
};

}  // namespace kel::program
