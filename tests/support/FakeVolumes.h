#pragma once

#include <map>
#include <string>
#include <vector>

#include "probes/storage/Volumes.h"
#include "support/FakeStorage.h"

namespace kel::test {

/// A drive letter, as a fake system reports it.
struct FakeVolume {
    UINT type = DRIVE_FIXED;
    std::wstring fileSystem = {};  ///< empty: it cannot be read
    ULONGLONG size = 0;            ///< 0: it cannot be read
    ULONGLONG free = 0;            ///< to the user
    std::wstring target = L"\\Device\\HarddiskVolume1";
    DWORD error = ERROR_UNRECOGNIZED_VOLUME;
    bool throws = false;
};

/// Drive letters, and which of them were opened.
struct FakeVolumes {
    std::map<wchar_t, FakeVolume> volumes;
    std::wstring windows = L"C:\\Windows";
    std::wstring profile;  ///< the folder of the user's local data
    std::wstring opened;   ///< the letter of each call that opens a volume

    VolumeFunctions Functions()
    {
        VolumeFunctions functions;
        functions.getLogicalDrives = [this] {
            DWORD drives = 0;
            for (const auto& [letter, volume] : volumes)
                drives |= 1U << (letter - L'A');
            SetLastError(ERROR_ACCESS_DENIED);
            return drives;
        };
        functions.getDriveType = [this](const wchar_t* root) { return volumes.at(*root).type; };
        functions.queryDosDevice = [this](const wchar_t* letter, std::span<wchar_t> buffer) {
            return FakeStorage::Fill(volumes.at(*letter).target, 0, buffer);
        };
        functions.getFileSystem = [this](const wchar_t* root, std::span<wchar_t> name) -> BOOL {
            const FakeVolume& volume = Open(root);
            return FakeStorage::Fill(volume.fileSystem, volume.fileSystem.empty() ? volume.error : 0, name) >
                   0;
        };
        functions.getFreeSpace = [this](const wchar_t* root, ULARGE_INTEGER& free,
                                        ULARGE_INTEGER& size) -> BOOL {
            const FakeVolume& volume = Open(root);
            free.QuadPart = volume.free;
            size.QuadPart = volume.size;
            SetLastError(volume.error);
            return volume.size != 0;
        };
        functions.getSystemWindowsDirectory = [this](std::span<wchar_t> buffer) {
            std::ranges::copy(windows, buffer.begin());
            return static_cast<UINT>(windows.size());
        };
        functions.getProfileFolder = [this] { return profile; };
        functions.listDisks = [](const std::wstring&) { return std::vector<std::int32_t>(); };
        return functions;
    }

private:
    const FakeVolume& Open(const wchar_t* root)
    {
        ErrorModeCheck::Look();
        opened += *root;
        if (volumes.at(*root).throws)
            throw 1;
        return volumes.at(*root);
    }
};

}  // namespace kel::test
