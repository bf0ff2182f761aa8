#pragma once

#include <windows.h>

#include <boost/function.hpp>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
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
    /// The numbers of the disks that hold the volume of a letter, such as "C:".
    boost::function<std::vector<std::int32_t>(const std::wstring& letter)> listDisks;
    /// SHGetKnownFolderPath for this user's local data; empty when it is not known.
    boost::function<std::wstring()> getProfileFolder;

    /// The system's own.
    static VolumeFunctions OfSystem();
};

/// A type (DRIVE_FIXED and so on) in words; empty for an unknown one.
const wchar_t* GetVolumeKind(UINT type);

/// Lists all drive letters in order. File system and sizes are read of fixed and RAM disks only: a remote
/// drive may hang, and an optical or removable one, or a floppy, would access its medium. A locked or raw
/// volume has no sizes, with a warning in the log.
std::vector<VolumeInfo> ListVolumes(const VolumeFunctions& functions);

/// The volume of the user's profile; null when it is unknown. Of a remote one nothing is known, as it is not
/// asked.
const VolumeInfo* FindProfileVolume(const VolumeFunctions& functions, const std::vector<VolumeInfo>& volumes);

}  // namespace kel
