#pragma once

#include <windows.h>

#include <boost/function.hpp>
#include <optional>
#include <string>

namespace kel {

/// The operating system's version record, architecture and edition.
struct OSInfo {
    bool hasVersion = false;  ///< the rest of the version is known
    DWORD platform = 0;       ///< 2 for NT
    DWORD major = 0;
    DWORD minor = 0;
    DWORD build = 0;
    std::wstring servicePack;  ///< as text, such as "Service Pack 1"
    WORD servicePackMajor = 0;
    WORD servicePackMinor = 0;
    WORD suiteMask = 0;
    BYTE productType = 0;   ///< 1 workstation, 2 domain controller, 3 server
    WORD architecture = 0;  ///< as GetNativeSystemInfo gives it
    DWORD edition = 0;      ///< as GetProductInfo gives it; 0 when unknown
    bool isServerR2 = false;
    LCID locale = 0;  ///< the user's, not the system's
};

/// The system's functions for its version; a test replaces them.
struct OSFunctions {
    boost::function<BOOL(OSVERSIONINFOEXW&)> getVersion;  ///< GetVersionExW
    boost::function<int(int)> getSystemMetrics;
    boost::function<void(SYSTEM_INFO&)> getNativeSystemInfo;                   ///< may be missing
    boost::function<BOOL(DWORD, DWORD, DWORD, DWORD, DWORD*)> getProductInfo;  ///< may be missing
    boost::function<BOOL(HANDLE, BOOL*)> isWow64Process;                       ///< may be missing
    boost::function<LCID()> getUserDefaultLCID;
    boost::function<std::optional<OSVERSIONINFOEXW>()> getTrueVersion;  ///< RtlGetVersion
    boost::function<BOOL(HANDLE, USHORT*, USHORT*)> isWow64Process2;    ///< may be missing
    /// The kind of the process's token: an administrator's before or after consent, or anybody else's.
    boost::function<std::optional<TOKEN_ELEVATION_TYPE>()> getElevation;
    /// The attributes (SE_GROUP_...) of the group Administrators in the process's token; 0 when the token
    /// lacks the group.
    boost::function<std::optional<DWORD>()> getAdministrators;

    /// The system's own.
    static OSFunctions OfSystem();
};

/// Reads the version record, the architecture and the edition.
OSInfo ReadOSInfo(const OSFunctions& functions);

/// The answer of IsWow64Process.
enum class Emulation { Unknown, No, Yes };

/// Whether the process runs under emulation on a 64-bit system; no without the function.
Emulation ReadEmulation(const OSFunctions& functions);

}  // namespace kel
