#include "kit/RecordedVolumes.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdio>

#include "probes/storage/Volumes.h"
#include "service/Utf8.h"

namespace kel::kit {

namespace {

constexpr int LetterId = 72602;
constexpr int KindId = 72603;
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

/// Exact to the byte.
std::string Gigabytes(const Size& size)
{
    std::array<char, 48> text = {};
    std::snprintf(text.data(), text.size(), "%.10f", static_cast<double>(size.Bytes()) / (1U << 30));
    return text.data();
}

/// Whether the stored kind is that of the letter's type.
bool HasKindOfItsType(const Snapshot& snapshot, const VolumeInfo& volume)
{
    const std::string letter = ToUtf8(volume.letter.ToString());
    const std::string kind = ToUtf8(GetVolumeKind(volume.type));
    return std::ranges::all_of(snapshot.facts, [&](const Fact& fact) {
        return fact.id != LetterId || fact.text != letter ||
               std::ranges::any_of(snapshot.facts, [&](const Fact& other) {
                   return other.id == KindId && other.index == fact.index && other.text == kind;
               });
    });
}

}  // namespace

std::vector<std::string> RecordVolumes(const Snapshot& snapshot)
{
    const VolumeFunctions functions = VolumeFunctions::OfSystem();
    std::array<wchar_t, MAX_PATH> windows = {};
    functions.getSystemWindowsDirectory(windows);
    std::vector<std::string> lines = {"windows-folder " + ToUtf8(windows.data())};
    const std::vector<std::int32_t> disks = functions.listDisks(std::wstring(windows.data()).substr(0, 2));
    if (disks.empty())
        return {};
    lines.emplace_back("windows ");
    for (const std::int32_t disk : disks)
        lines.back() += (disk == disks.front() ? "" : "|") + std::to_string(disk);
    for (const VolumeInfo& volume : ListVolumes(functions)) {
        if (!volume.failures.empty() || !HasKindOfItsType(snapshot, volume))
            return {};
        const std::wstring letter = volume.letter.ToString();
        std::string line =
            "volume letter=" + ToUtf8(letter.substr(0, 1)) + "|type=" + std::to_string(volume.type);
        if (const std::string system = ToUtf8(volume.fileSystem.ToString()); !system.empty())
            line += "|system=" + system;
        if (volume.size && volume.free)
            line += "|gigabytes=" + Gigabytes(*volume.size) + "|free=" + Gigabytes(*volume.free);
        if (const std::string target = ReadTarget(functions, letter); !target.empty())
            line += "|target=" + target;
        lines.push_back(line);
    }
    return lines;
}

}  // namespace kel::kit
