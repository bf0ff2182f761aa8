#include "support/Machines.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <stdexcept>

#include "service/Utf8.h"
#include "support/TestFiles.h"
#include "values/Text.h"

namespace kel::test {

namespace {

/// The words whose fields have names, and the order in which they are planted.
const std::map<std::wstring, std::wstring> FieldNames = {
    {L"adapter", L"instance name type medium flags state speed container problem driver hardware version"},
    {L"card",
     L"key name vendor device subsystem dedicated shared flags level11 level12 shader wddm driver dxcore "
     L"kernel rays"},
    {L"disk", L"bus vendor product revision bytes seek odd model number"},
    {L"drive", L"number bus product profiles media odd"},
    {L"graphics",
     L"name instance version matching megabytes qword-megabytes problem date vulkan radeon chip"},
    {L"note", L"place vendor device level11 megabytes level12 name driver"},
    {L"optical", L"instance hardware name number bus product profiles media odd problem"},
    {L"screen",
     L"picture x y width height rate per connector name instance hdr format adapter preferred hdr2 modes "
     L"device"},
    {L"system",
     L"major minor build type suite architecture edition pack pack-text r2 true native elevation "
     L"administrators"},
    {L"topology", L"cores threads efficient packages cache groups"},
    {L"volume", L"letter type system gigabytes free target error disk"}};

/// The words in the first column of the page about machines.
std::set<std::wstring> ReadWords()
{
    std::set<std::wstring> words = {L"=", L"+", L"ids"};
    for (const std::wstring& row : ReadRows("README.md")) {
        const Lines marked =
            Split(row.starts_with(L"| `") ? row.substr(2, row.find(L'|', 2) - 2) : L"", L'`');
        for (const std::wstring& word : marked)
            words.insert(word);
    }
    return words;
}

/// The values of `name=value` fields, with bars between them, in the order in which they are planted.
std::wstring InOrder(const std::wstring& line, const std::wstring& names)
{
    std::map<std::wstring, std::wstring> values;
    for (const std::wstring& field : Split(line, L'|')) {
        const std::size_t equals = std::min(field.find(L'='), field.size() - 1);
        values[field.substr(0, equals)] = field.substr(equals + 1);
    }
    std::wstring ordered;
    for (const std::wstring& name : Split(names, L' ')) {
        ordered += values[name] + L'|';
        values.erase(name);
    }
    if (!values.empty())
        throw std::runtime_error("unknown field in: " + Narrow(line));
    return ordered;
}

}  // namespace

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
        const std::wstring word = line.substr(0, blank);
        const std::wstring fields = blank == std::wstring::npos ? L"" : line.substr(blank + 1);
        static const std::set<std::wstring> words = ReadWords();
        if (!words.contains(word))
            throw std::runtime_error("unknown word in: " + Narrow(line));
        const auto names = FieldNames.find(word);
        lines[word].push_back(names == FieldNames.end() ? fields : InOrder(fields, names->second));
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
    std::ifstream stream(TestFile(KEL_MACHINES) / file);
    Lines rows;
    for (std::string row; std::getline(stream, row);) {
        if (!row.empty() && !row.starts_with('#'))
            rows.push_back(FromUtf8(row));
    }
    return rows;
}

}  // namespace kel::test
