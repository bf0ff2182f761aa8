#pragma once

#include <windows.h>

#include <boost/function.hpp>
#include <span>
#include <vector>

#include "probes/storage/VolumeInfo.h"

namespace kel {

/// The functions that tell of drive letters; a test puts its own in their place.
struct VolumeFunctions {
    boost::function<DWORD()> getLogicalDrives;
    boost::function<UINT(const wchar_t* root)> getDriveType;
    boost::function<DWORD(const wchar_t* letter, std::span<wchar_t> buffer)> queryDosDevice;
    /// GetVolumeInformationW, of which the file system alone is taken.
    boost::function<BOOL(const wchar_t* root, std::span<wchar_t> fileSystem)> getFileSystem;
    /// GetDiskFreeSpaceExW: bytes free to the caller, and bytes in all.
    boost::function<BOOL(const wchar_t* root, ULARGE_INTEGER& free, ULARGE_INTEGER& size)> getFreeSpace;
    boost::function<UINT(std::span<wchar_t> buffer)> getSystemWindowsDirectory;

    /// The system's own.
    static VolumeFunctions OfSystem();
};

/// Lists all drive letters in their order. Fixed and RAM disks alone are asked for file system and sizes: a
/// remote drive may hang, and an optical or removable one, or a floppy, would look for its medium. A volume
/// that is locked or raw has no sizes, with a warning in the log.
std::vector<VolumeInfo> ListVolumes(const VolumeFunctions& functions);

}  // namespace kel
