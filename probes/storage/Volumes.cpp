#include "probes/storage/Volumes.h"

#include <shlobj.h>

#include <algorithm>
#include <array>
#include <memory>

#include "diag/Log.h"
#include "diag/SourceFailures.h"
#include "platform/Handles.h"
#include "platform/Library.h"
#include "probes/Attempt.h"
#include "probes/storage/Disks.h"
#include "probes/storage/StorageFunctions.h"
#include "values/Junk.h"
#include "values/Text.h"

namespace kel {

namespace {

constexpr int LetterCount = 26;
/// FOLDERID_LocalAppData, which not every platform's libraries define.
constexpr GUID LocalAppData = {0xF1B32785, 0x6FBA, 0x4FCF, {0x9D, 0x55, 0x7B, 0x8E, 0x7F, 0x15, 0x70, 0x91}};
/// The prefix of the target of a letter that is another name for a folder.
constexpr std::wstring_view AliasPrefix = L"\\??\\";
/// The prefix of the target of a letter that is a volume of a disk. Drivers of images and cloud storage use
/// other names.
constexpr std::wstring_view VolumePrefix = L"\\Device\\HarddiskVolume";

void ReadTarget(const VolumeFunctions& functions, const std::wstring& letter, VolumeInfo& volume)
{
    std::array<wchar_t, MAX_PATH> buffer = {};
    // A target that is too long for the buffer is a folder.
    if (functions.queryDosDevice(letter.c_str(), buffer) == 0) {
        volume.isAlias = GetLastError() == ERROR_INSUFFICIENT_BUFFER;
        return;
    }
    const std::wstring_view target(buffer.data(), wcsnlen(buffer.data(), buffer.size()));
    volume.isAlias = target.starts_with(AliasPrefix);
    volume.isVolume = target.starts_with(VolumePrefix);
}

/// Asks a disk that always has its medium.
/// @return the first error, or 0
DWORD ReadVolume(const VolumeFunctions& functions, const std::wstring& root, VolumeInfo& volume)
{
    DWORD error = ERROR_SUCCESS;
    std::array<wchar_t, MAX_PATH + 1> fileSystem = {};
    if (functions.getFileSystem(root.c_str(), fileSystem))
        volume.fileSystem = Name(TidyText({fileSystem.data(), wcsnlen(fileSystem.data(), MAX_PATH)}));
    else
        error = GetLastError();
    ULARGE_INTEGER free = {};
    ULARGE_INTEGER size = {};
    if (!functions.getFreeSpace(root.c_str(), free, size))
        return error != ERROR_SUCCESS ? error : GetLastError();
    if (size.QuadPart != 0) {
        volume.size = Size(size.QuadPart);
        volume.free = Size(free.QuadPart);
    }
    return error;
}

std::wstring GetProfileFolder()
{
    auto* const find =
        PermanentFunction<decltype(SHGetKnownFolderPath)>(L"shell32.dll", "SHGetKnownFolderPath");
    PWSTR path = nullptr;
    const bool isFound =
        find != nullptr && SUCCEEDED(find(LocalAppData, KF_FLAG_DONT_VERIFY, nullptr, &path));
    const std::unique_ptr<wchar_t, Closer<&CoTaskMemFree>> owner(path);
    return isFound ? path : std::wstring();
}

}  // namespace

VolumeFunctions VolumeFunctions::OfSystem()
{
    const StorageFunctions storage = StorageFunctions::OfSystem();
    VolumeFunctions functions;
    functions.getLogicalDrives = &GetLogicalDrives;
    functions.getDriveType = &GetDriveTypeW;
    functions.queryDosDevice = storage.queryDosDevice;
    functions.getFileSystem = [](const wchar_t* root, std::span<wchar_t> fileSystem) {
        return GetVolumeInformationW(root, nullptr, 0, nullptr, nullptr, nullptr, fileSystem.data(),
                                     static_cast<DWORD>(fileSystem.size()));
    };
    functions.getFreeSpace = [](const wchar_t* root, ULARGE_INTEGER& free, ULARGE_INTEGER& size) {
        return GetDiskFreeSpaceExW(root, &free, &size, nullptr);
    };
    functions.getSystemWindowsDirectory = storage.getSystemWindowsDirectory;
    functions.listDisks = [storage](const std::wstring& letter) { return ReadVolumeDisks(storage, letter); };
    functions.getProfileFolder = &GetProfileFolder;
    return functions;
}

const wchar_t* GetVolumeKind(UINT type)
{
    switch (type) {
        case DRIVE_FIXED:
            return L"fixed";
        case DRIVE_REMOVABLE:
            return L"removable";
        case DRIVE_CDROM:
            return L"optical";
        case DRIVE_REMOTE:
            return L"remote";
        case DRIVE_RAMDISK:
            return L"RAM";
        default:
            return L"";
    }
}

const VolumeInfo* FindProfileVolume(const VolumeFunctions& functions, const std::vector<VolumeInfo>& volumes)
{
    const VolumeInfo* volume = nullptr;
    Attempt(L"Error in the volume of the profile.", [&] {
        const std::wstring folder = functions.getProfileFolder();
        const auto isOfProfile = [&folder](const VolumeInfo& found) {
            return ToUpper(folder.substr(0, 2)) == found.letter.ToString();
        };
        if (const auto found = std::ranges::find_if(volumes, isOfProfile); found != volumes.end())
            volume = &*found;
    });
    return volume;
}

std::vector<VolumeInfo> ListVolumes(const VolumeFunctions& functions)
{
    std::vector<VolumeInfo> volumes;
    Attempt(L"Error in the list of volumes.", [&] {
        const DWORD drives = functions.getLogicalDrives();
        if (drives == 0) {
            const DWORD error = GetLastError();
            WriteLog(LogWarning, L"The system cannot list its volumes, error ", error);
            FailureScope::Note(L"GetLogicalDrives", error);
        }
        const std::wstring windows = GetWindowsLetter(functions.getSystemWindowsDirectory);
        for (int place = 0; place < LetterCount; ++place) {
            if ((drives >> place & 1) == 0)
                continue;
            VolumeInfo& volume = volumes.emplace_back();
            const std::wstring letter = {static_cast<wchar_t>(L'A' + place), L':'};
            volume.letter = Name(letter);
            if (!windows.empty())
                volume.holdsWindows = letter == windows;
            const FailureScope scope;
            DWORD error = ERROR_SUCCESS;
            Attempt(L"Error in a volume's answers.", [&] {
                const std::wstring root = letter + L"\\";
                volume.type = functions.getDriveType(root.c_str());
                volume.kind = Name(GetVolumeKind(volume.type));
                ReadTarget(functions, letter, volume);
                if (volume.type == DRIVE_FIXED || volume.type == DRIVE_RAMDISK)
                    error = ReadVolume(functions, root, volume);
                if (volume.type == DRIVE_FIXED && volume.isVolume)
                    volume.disks = functions.listDisks(letter);
            });
            if (error != ERROR_SUCCESS)
                WriteLog(LogWarning, L"Volume ", letter, L": incomplete answer, error ", error);
            if (error != ERROR_SUCCESS || scope.Found().hasException)
                volume.failures = {{L"volume " + letter, error}};
        }
    });
    return volumes;
}

}  // namespace kel
