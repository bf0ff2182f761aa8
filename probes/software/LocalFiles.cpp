#include "probes/software/LocalFiles.h"

#include <algorithm>

#include "probes/software/Command.h"
#include "probes/software/FileVersion.h"
#include "values/TextMatch.h"

namespace kel {

namespace {

bool IsProgram(std::wstring_view path, std::wstring_view programs)
{
    return std::ranges::any_of(SplitList(programs), [path](std::wstring_view program) {
        return IsSameText(FileNameOf(path), FileNameOf(program));
    });
}

}  // namespace

std::wstring LocalFiles::FindBelow(std::wstring_view folder, std::wstring_view programs)
{
    if (folder.empty())
        return {};
    const std::wstring expanded = functions.expand(std::wstring(folder));
    for (const std::wstring_view program : SplitList(programs)) {
        std::wstring path = JoinPath(expanded, program);
        if (IsThere(path))
            return path;
        path = JoinPath(expanded, FileNameOf(program));
        if (FileNameOf(program) != program && IsThere(path))
            return path;
    }
    return {};
}

std::wstring LocalFiles::FindNamed(const std::wstring& command, std::wstring_view programs)
{
    for (const std::wstring& program : ProgramsOf(command)) {
        std::wstring path = functions.expand(program);
        if (IsProgram(path, programs) && IsThere(path))
            return path;
    }
    return {};
}

std::wstring LocalFiles::ReadVersion(const std::wstring& path)
{
    const auto [found, isNew] = versions.try_emplace(path);
    if (isNew && IsOnFixedDrive(path))
        found->second = ReadFixedVersion(functions.versionRecord(path.c_str()));
    return found->second;
}

bool LocalFiles::IsThere(const std::wstring& path)
{
    if (!IsOnFixedDrive(path))
        return false;
    const DWORD attributes = functions.fileAttributes(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool LocalFiles::IsOnFixedDrive(const std::wstring& path)
{
    if (!IsPlainPath(path))
        return false;
    UINT& type = driveTypes[(static_cast<unsigned>(path.front()) | 0x20U) - L'a'];
    if (type == DRIVE_UNKNOWN)
        type = functions.driveType(path.substr(0, 3).c_str());
    return type == DRIVE_FIXED || type == DRIVE_RAMDISK;
}

}  // namespace kel
