#include "probes/storage/Volumes.h"

#include <array>

#include "diag/Log.h"
#include "probes/Attempt.h"
#include "probes/storage/StorageFunctions.h"
#include "values/Junk.h"

namespace kel {

namespace {

constexpr int LetterCount = 26;
/// The prefix of the target of a letter that is another name for a folder.
constexpr std::wstring_view AliasPrefix = L"\\??\\";

const wchar_t* GetKind(UINT type)
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

bool IsAlias(const VolumeFunctions& functions, const std::wstring& letter)
{
    std::array<wchar_t, MAX_PATH> target = {};
    // A target that is too long for the buffer is a folder's.
    if (functions.queryDosDevice(letter.c_str(), target) == 0)
        return GetLastError() == ERROR_INSUFFICIENT_BUFFER;
    return std::wstring_view(target.data(), wcsnlen(target.data(), target.size())).starts_with(AliasPrefix);
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
    return functions;
}

std::vector<VolumeInfo> ListVolumes(const VolumeFunctions& functions)
{
    std::vector<VolumeInfo> volumes;
    Attempt(L"Error in the list of volumes.", [&] {
        const DWORD drives = functions.getLogicalDrives();
        if (drives == 0)
            WriteLog(LogWarning, L"The system cannot list its volumes, error ", GetLastError());
        const std::wstring windows = GetWindowsLetter(functions.getSystemWindowsDirectory);
        for (int place = 0; place < LetterCount; ++place) {
            if ((drives >> place & 1) == 0)
                continue;
            VolumeInfo& volume = volumes.emplace_back();
            const std::wstring letter = {static_cast<wchar_t>(L'A' + place), L':'};
            volume.letter = Name(letter);
            if (!windows.empty())
                volume.holdsWindows = letter == windows;
            DWORD error = ERROR_SUCCESS;
            Attempt(L"Error in a volume's answers.", [&] {
                const std::wstring root = letter + L"\\";
                volume.type = functions.getDriveType(root.c_str());
                volume.kind = Name(GetKind(volume.type));
                volume.isAlias = IsAlias(functions, letter);
                if (volume.type == DRIVE_FIXED || volume.type == DRIVE_RAMDISK)
                    error = ReadVolume(functions, root, volume);
            });
            if (error != ERROR_SUCCESS)
                WriteLog(LogWarning, L"Volume ", letter, L": incomplete answer, error ", error);
        }
    });
    return volumes;
}

}  // namespace kel
