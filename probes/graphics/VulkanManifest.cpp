#include "probes/graphics/VulkanManifest.h"

#include <windows.h>

#include <algorithm>

#include "platform/ErrorMode.h"
#include "platform/Handles.h"

namespace kel {

namespace {

constexpr std::string_view Key = "\"api_version\"";
constexpr std::string_view Blanks = " \t\r\n";
constexpr std::size_t MaxVersionLength = 32;
constexpr DWORD MaxFileSize = 64 * 1024;  // bytes

/// Removes blanks and then the given character from the start of a text; false when another one is there.
bool Skip(std::string_view& text, char character)
{
    text.remove_prefix(std::min(text.find_first_not_of(Blanks), text.size()));
    if (!text.starts_with(character))
        return false;
    text.remove_prefix(1);
    return true;
}

}  // namespace

std::optional<Version> ReadVulkanVersion(std::string_view manifest)
{
    const std::size_t key = manifest.find(Key);
    if (key == std::string_view::npos)
        return {};
    std::string_view rest = manifest.substr(key + Key.size());
    if (!Skip(rest, ':') || !Skip(rest, '"'))
        return {};
    const std::size_t end = rest.find('"');
    const std::string_view version = rest.substr(0, std::min(end, rest.size()));
    if (end == std::string_view::npos || version.empty() || version.size() > MaxVersionLength ||
        version.front() == '.' || version.find_first_not_of("0123456789.") != std::string_view::npos)
        return {};
    return Version(std::wstring(version.begin(), version.end()));
}

std::string ReadSmallFile(const std::wstring& path)
{
    const ErrorMode quiet;
    if (path.size() <= 3 || path.substr(1, 2) != L":\\" ||
        GetDriveTypeW(path.substr(0, 3).c_str()) != DRIVE_FIXED)
        return {};
    const HANDLE opened = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, 0, nullptr);
    if (opened == INVALID_HANDLE_VALUE)
        return {};
    const OwnedHandle file(opened);
    std::string text(MaxFileSize, '\0');
    DWORD size = 0;
    if (!ReadFile(file.get(), text.data(), MaxFileSize, &size, nullptr))
        size = 0;
    text.resize(size);
    return text;
}

}  // namespace kel
