#include "probes/software/Command.h"

#include <algorithm>

#include "values/TextMatch.h"

namespace kel {

namespace {

constexpr std::wstring_view Blanks = L" \t";
constexpr std::wstring_view ProgramEnding = L".exe";
constexpr std::wstring_view AfterProgram = L" \t,\"";
constexpr std::wstring_view Up = L"..";
constexpr std::wstring_view NotInPaths = L"<>\"|?*/";
constexpr std::size_t MaxPrograms = 8;

std::wstring_view WithoutBlanks(std::wstring_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(Blanks), text.size()));
    return text.substr(0, text.find_last_not_of(Blanks) + 1);
}

bool IsLetter(wchar_t character)
{
    return (character >= L'A' && character <= L'Z') || (character >= L'a' && character <= L'z');
}

}  // namespace

std::vector<std::wstring> ProgramsOf(std::wstring_view command)
{
    std::vector<std::wstring> programs;
    command = WithoutBlanks(command);
    if (command.starts_with(L'"')) {
        command.remove_prefix(1);
        const std::wstring_view quoted = WithoutBlanks(command.substr(0, command.find(L'"')));
        if (!quoted.empty())
            programs.emplace_back(quoted);
        return programs;
    }
    for (std::size_t at = command.find(L'.'); at < command.size() && programs.size() < MaxPrograms;
         at = command.find(L'.', at + 1)) {
        const std::size_t end = at + ProgramEnding.size();
        if (IsSameText(command.substr(at, ProgramEnding.size()), ProgramEnding) &&
            (end == command.size() || AfterProgram.find(command[end]) != std::wstring_view::npos))
            programs.emplace_back(command.substr(0, end));
    }
    return programs;
}

std::wstring_view FileNameOf(std::wstring_view path)
{
    return path.substr(path.find_last_of(L"\\/") + 1);
}

std::wstring_view FolderOf(std::wstring_view path)
{
    const std::size_t end = path.rfind(L'\\');
    return end == std::wstring_view::npos ? std::wstring_view() : path.substr(0, end);
}

std::wstring JoinPath(std::wstring_view folder, std::wstring_view below)
{
    while (folder.ends_with(L'\\'))
        folder.remove_suffix(1);
    while (below.starts_with(Up)) {
        folder = FolderOf(folder);
        below.remove_prefix(std::min(Up.size() + 1, below.size()));
    }
    std::wstring path(folder);
    if (!below.empty())
        path.append(1, L'\\').append(below);
    return path;
}

bool IsPlainPath(std::wstring_view path)
{
    return path.size() > 3 && IsLetter(path[0]) && path.substr(1, 2) == L":\\" &&
           std::ranges::all_of(path.substr(2), [](wchar_t character) {
               return character >= L' ' && character != L':' &&
                      NotInPaths.find(character) == std::wstring_view::npos;
           });
}

}  // namespace kel
