// Other programs, run to their end.
#pragma once

#include <string>

namespace kel::kit {

/// What a program left. Output is that of both its streams, in UTF-8.
struct Ran {
    bool isStarted = false;
    bool isLate = false;  ///< it was ended at its time limit, with all programs that it had started
    unsigned long code = 0;
    std::string output;
    double seconds = 0;
};

/// Runs a program without a window.
/// @param commandLine variables of the environment (%NAME%) are replaced
/// @param maxSeconds its time limit
Ran RunProgram(const std::wstring& commandLine, unsigned maxSeconds);

/// The text in quotes, as a command line takes a path.
std::wstring Quoted(const std::wstring& text);

}  // namespace kel::kit
