#include "support/Machines.h"

#include <fstream>

#include "values/Text.h"

namespace kel::test {

const Lines& Machine::operator[](const wchar_t* word) const
{
    static const Lines none;
    const auto found = lines.find(word);
    return found != lines.end() ? found->second : none;
}

std::wstring Machine::First(const wchar_t* word) const
{
    return (*this)[word].empty() ? L"" : (*this)[word].front();
}

Lines Machine::Stored(const wchar_t* word) const
{
    Lines stored;
    for (std::wstring line : (*this)[word]) {
        ReplaceAll(line, L"; ", L"\n");
        for (const std::wstring& value : Split(line, L'\n'))
            stored.push_back(value);
    }
    return stored;
}

void Machine::Add(const std::wstring& text)
{
    for (const std::wstring& line : Split(text, L'\n')) {
        const std::size_t blank = line.find(L' ');
        lines[line.substr(0, blank)].push_back(blank == std::wstring::npos ? L"" : line.substr(blank + 1));
    }
}

Lines FoundIn(Lines stored)
{
    std::erase_if(stored, [](const std::wstring& line) {
        return line.ends_with(L"=") || line.ends_with(L"=No") || line.ends_with(L"=0");
    });
    return stored;
}

std::vector<Machine> ReadMachines(const char* file)
{
    Machine common;
    std::vector<Machine> machines;
    for (const std::wstring& line : ReadRows(file)) {
        if (line.starts_with(L"machine "))
            machines.push_back(common);
        (machines.empty() ? common : machines.back()).Add(line);
    }
    return machines;
}

Lines ReadRows(const char* file)
{
    std::wifstream stream(std::string(KEL_MACHINES "/") + file);
    Lines rows;
    for (std::wstring row; std::getline(stream, row);) {
        if (!row.empty() && !row.starts_with(L'#'))
            rows.push_back(row);
    }
    return rows;
}

}  // namespace kel::test
