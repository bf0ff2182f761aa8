// Machines as the files in tests/machines describe them.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "support/Split.h"

namespace kel::test {

/// A machine's lines by their first word; its name is under "machine", and its stored values are under "=".
class Machine {
public:
    /// The lines of a word, in order; an empty list is not an error.
    const Lines& operator[](const wchar_t* word) const;
    /// The first line of a word; empty when there is none.
    std::wstring First(const wchar_t* word) const;
    /// The stored values that a word lists, as "id[index]=text" lines.
    Lines Stored(const wchar_t* word) const;

    /// Replaces a word's lines with one line.
    void Set(const wchar_t* word, const std::wstring& line) { lines[word] = {line}; }

    /// Adds a line, or several.
    /// @throws std::runtime_error for a word or a field that tests/machines/README.md does not have
    void Add(const std::wstring& text);

private:
    std::map<std::wstring, Lines> lines;
};

/// The stored lines that say more than "No", "0" or nothing.
Lines FoundIn(Lines stored);

/// The machines of a file. Lines before the first machine apply to each of them.
std::vector<Machine> ReadMachines(const char* file);

/// The lines of a file in tests/machines, without empty ones and comments.
Lines ReadRows(const char* file);

}  // namespace kel::test
