#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kel::program {

enum class Command {
    Facts,
    Check,
    Report,
    Explain,
    Compare,
    Host,
    Embedding,
    RegisterServer,
    UnregisterServer,
};

/// What the user asks for. Texts are UTF-8; those that were not given are empty.
struct Options {
    Command command = Command::Facts;
    std::vector<std::string> subjects;  // areas and ids
    std::string product;
    std::string requirements;  // a file, as the next two
    std::string html;
    std::vector<std::string> files;    // those that are read, or the one that is written
    std::string service;               // a host
    std::vector<std::string> callers;  // what a browser names as the caller of its native host
    std::string parentWindow;          // likewise
    bool asJson = false;
    bool asCsv = false;
    bool showsReasons = false;
};

/// Reads the arguments, without the program's name. Nothing when they asked for help or the version, which
/// then was written to standard output.
/// @throws UserError for wrong arguments
std::optional<Options> ReadCommandLine(std::vector<std::string> arguments);

}  // namespace kel::program
