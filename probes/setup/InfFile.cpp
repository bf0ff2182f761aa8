#include "probes/setup/InfFile.h"

#include <algorithm>
#include <set>

#include "values/Text.h"

namespace kel {

namespace {

std::wstring InfPath(const std::wstring& fileName)
{
    std::wstring folder(MAX_PATH, L'\0');
    folder.resize(std::min<std::size_t>(GetSystemWindowsDirectoryW(folder.data(), MAX_PATH), MAX_PATH));
    return folder + L"\\inf\\" + fileName;
}

std::vector<std::wstring> SplitFields(std::wstring_view line)
{
    std::vector<std::wstring> fields;
    for (const std::wstring_view field : Split(line, L','))
        fields.push_back(Trim(std::wstring(field)));
    return fields;
}

/// The sections that may hold a manufacturer's models: the plain name, then the platforms that the line
/// names, then those that older files do not name.
std::vector<std::wstring> ModelSections(const std::vector<std::wstring>& manufacturer)
{
    std::vector<std::wstring> sections = {manufacturer.front()};
    const auto add = [&sections](const std::wstring& platform) {
        if (!platform.empty())
            sections.push_back(sections.front() + L"." + platform);
    };
    for (std::size_t field = 1; field < manufacturer.size(); ++field)
        add(manufacturer[field]);
    add(L"NTamd64");
    add(L"NT");
    return sections;
}

}  // namespace

InfFile::InfFile(const SetupEntryPoints& newEntryPoints, const std::wstring& fileName)
    : entryPoints(newEntryPoints)
{
    if (fileName.empty())
        return;
    const HINF opened = entryPoints.openInfFile(InfPath(fileName).c_str(), nullptr, INF_STYLE_WIN4, nullptr);
    if (opened != INVALID_HANDLE_VALUE)
        file = {opened, {entryPoints.closeInfFile}};
}

std::wstring InfFile::FindModel(std::wstring_view lowerCaseText,
                                const std::vector<std::wstring>& hardwareIds) const
{
    std::set<std::wstring> wanted;
    for (const std::wstring& id : hardwareIds) {
        if (ToLower(id).find(lowerCaseText) != std::wstring::npos)
            wanted.insert(ToLower(id));
    }
    std::wstring found;
    // The first field of a model's line names its installation section; the ids follow.
    const auto findId = [&](const std::vector<std::wstring>& model) {
        const auto id = std::find_if(model.begin() + 1, model.end(), [&](const std::wstring& field) {
            return wanted.contains(ToLower(field));
        });
        if (id != model.end())
            found = *id;
        return !found.empty();
    };
    std::set<std::wstring> searched;  // a file may name a long section ten thousand times
    Walk(L"Manufacturer", [&](const std::vector<std::wstring>& manufacturer) {
        for (const std::wstring& section : ModelSections(manufacturer)) {
            if (found.empty() && searched.insert(section).second)
                Walk(section, findId);
        }
        return !found.empty();
    });
    return found;
}

template <typename Visit>
void InfFile::Walk(const std::wstring& section, Visit visit) const
{
    INFCONTEXT line = {};
    if (!file || !entryPoints.findFirstLine(file.get(), section.c_str(), nullptr, &line))
        return;
    do {
        if (visit(Fields(line)))
            return;
    } while (entryPoints.findNextLine(&line, &line));
}

/// At least one field; an empty one when the line cannot be read.
std::vector<std::wstring> InfFile::Fields(INFCONTEXT& line) const
{
    DWORD size = 0;
    std::wstring text;
    if (entryPoints.getLineText(&line, nullptr, nullptr, nullptr, nullptr, 0, &size) && size > 0) {
        text.resize(size);
        if (!entryPoints.getLineText(&line, nullptr, nullptr, nullptr, text.data(), size, nullptr))
            text.clear();
    }
    return SplitFields(text.substr(0, text.find(L'\0')));
}

}  // namespace kel
