#pragma once

#include <windows.h>

#include <boost/function.hpp>
#include <span>
#include <vector>

#include "probes/storage/VolumeInfo.h"

namespace kel {

/// The system's functions for drive letters; a test replaces them.
struct VolumeFunctions {
    boost::function<DWORD()> getLogicalDrives;
    boost::function<UINT(const wchar_t* root)> getDriveType;
    boost::function<DWORD(const wchar_t* letter, std::span<wchar_t> buffer)> queryDosDevice;
    /// GetVolumeInformationW, used for the file system only.
    boost::function<BOOL(const wchar_t* root, std::span<wchar_t> fileSystem)> getFileSystem;
    /// GetDiskFreeSpaceExW: bytes free to the caller, and bytes in all.
    boost::function<BOOL(const wchar_t* root, ULARGE_INTEGER& free, ULARGE_INTEGER& size)> getFreeSpace;
    boost::function<UINT(std::span<wchar_t> buffer)> getSystemWindowsDirectory;

    /// The system's own.
    static VolumeFunctions OfSystem();
};

/// Lists all drive letters in order. File system and sizes are read of fixed and RAM disks only: a remote
/// drive may hang, and an optical or removable one, or a floppy, would access its medium. A locked or raw
/// volume has no sizes, with a warning in the log.
std::vector<VolumeInfo> ListVolumes(const VolumeFunctions& functions);

}  // namespace kel
