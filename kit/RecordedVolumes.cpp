#include "kit/RecordedVolumes.h"

#include <windows.h>

#include <array>
#include <cstdio>

#include "platform/ErrorMode.h"
#include "service/Utf8.h"

namespace kel::kit {

namespace {

constexpr std::string_view FolderPrefix = "\\??\\";
constexpr std::string_view DevicePrefix = "\\Device\\";

std::string ReadTarget(const VolumeFunctions& functions, const std::wstring& letter)
{
    std::array<wchar_t, MAX_PATH> buffer = {};
    if (functions.queryDosDevice(letter.c_str(), buffer) == 0)
        return GetLastError() == ERROR_INSUFFICIENT_BUFFER ? std::string(FolderPrefix) : "";
    const std::string target = ToUtf8({buffer.data(), wcsnlen(buffer.data(), buffer.size())});
    if (target.starts_with(FolderPrefix))
        return std::string(FolderPrefix);
    if (!target.starts_with(DevicePrefix))
        return "";
    return target.substr(0, target.find('\\', DevicePrefix.size()));
}

std::string ListDisks(const std::vector<std::int32_t>& disks)
{
    std::string numbers;
    for (const std::int32_t disk : disks)
        numbers += (numbers.empty() ? "" : " ") + std::to_string(disk);
    return numbers;
}

/// Exact to the byte.
std::string Gigabytes(const Size& size)
{
    std::array<char, 48> text = {};
    std::snprintf(text.data(), text.size(), "%.10f", static_cast<double>(size.Bytes()) / (1U << 30));
    return text.data();
}

}  // namespace

std::vector<std::string> RecordVolumes(const VolumeFunctions& functions)
{
    const ErrorMode quiet;
    std::array<wchar_t, MAX_PATH> windows = {};
    functions.getSystemWindowsDirectory(windows);
    std::vector<std::string> lines = {"windows-folder " + ToUtf8(windows.data())};
    const std::vector<VolumeInfo> volumes = ListVolumes(functions);
    if (const VolumeInfo* const profile = FindProfileVolume(functions, volumes))
        lines.push_back("profile " + ToUtf8(profile->letter.ToString()) + "\\");
    for (const VolumeInfo& volume : volumes) {
        if (!volume.failures.empty())
            return {};
        const std::wstring letter = volume.letter.ToString();
        std::string line =
            "volume letter=" + ToUtf8(letter.substr(0, 1)) + "|type=" + std::to_string(volume.type);
        if (const std::string system = ToUtf8(volume.fileSystem.ToString()); !system.empty())
            line += "|system=" + system;
        if (volume.size && volume.free)
            line += "|gigabytes=" + Gigabytes(*volume.size) + "|free=" + Gigabytes(*volume.free);
        if (volume.type == DRIVE_FIXED && !volume.disks.empty())
            line += "|disk=" + ListDisks(volume.disks);
        if (const std::string target = ReadTarget(functions, letter); !target.empty())
            line += "|target=" + target;
        lines.push_back(line);
    }
    return lines;
}

}  // namespace kel::kit
