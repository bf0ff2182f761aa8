// Machines as the files in tests/machines describe them.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "support/Split.h"

namespace kel::test {

/// Of a machine, the lines of each word that one begins with; its name stands under "machine", and what is
/// stored of it under "=".
class Machine {
public:
    /// The lines of a word, in order; an empty list is not an error.
    const Lines& operator[](const wchar_t* word) const;
    /// The first line of a word; empty when there is none.
    std::wstring First(const wchar_t* word) const;
    /// What a word says is stored, as "id[index]=text" lines.
    Lines Stored(const wchar_t* word) const;

    /// Puts a line in the place of a word's lines.
    void Set(const wchar_t* word, const std::wstring& line) { lines[word] = {line}; }

    /// Adds a line, or several.
    /// @throws std::runtime_error for a word or a field that tests/machines/README.md does not have
    void Add(const std::wstring& text);

private:
    std::map<std::wstring, Lines> lines;
};

/// Of stored lines, those that say more than "No", "0" or nothing.
Lines FoundIn(Lines stored);

/// The machines of a file. What stands before the first goes for each.
std::vector<Machine> ReadMachines(const char* file);

/// The lines of a file in tests/machines, but for empty ones and comments.
Lines ReadRows(const char* file);

}  // namespace kel::test
