#include "probes/system/WindowsRelease.h"

namespace kel {

namespace {

constexpr BYTE WorkstationType = 1;

/// A release and its build: for a workstation the first build, for a server the only one; 0 for any.
struct Release {
    DWORD major;
    DWORD minor;
    DWORD build;
    const wchar_t* name;
};

constexpr Release Clients[] = {
    {10, 0, 22000, L"Windows 11"}, {10, 0, 0, L"Windows 10"}, {6, 3, 0, L"Windows 8.1"},
    {6, 2, 0, L"Windows 8"},       {6, 1, 0, L"Windows 7"},   {6, 0, 0, L"Windows Vista"},
};

constexpr Release Servers[] = {
    {10, 0, 26100, L"Windows Server 2025"}, {10, 0, 20348, L"Windows Server 2022"},
    {10, 0, 17763, L"Windows Server 2019"}, {10, 0, 14393, L"Windows Server 2016"},
    {10, 0, 0, L"Windows Server"},          {6, 3, 0, L"Windows Server 2012 R2"},
    {6, 2, 0, L"Windows Server 2012"},      {6, 1, 0, L"Windows Server 2008 R2"},
    {6, 0, 0, L"Windows Server 2008"},
};

}  // namespace

std::wstring NameRelease(const OSVERSIONINFOEXW& version)
{
    const bool isClient = version.wProductType == WorkstationType;
    const auto isBuild = [&](DWORD build) {
        return build == 0 || (isClient ? version.dwBuildNumber >= build : version.dwBuildNumber == build);
    };
    const auto find = [&](const auto& releases) -> std::wstring {
        for (const Release& release : releases) {
            if (release.major == version.dwMajorVersion && release.minor == version.dwMinorVersion &&
                isBuild(release.build))
                return release.name;
        }
        return {};
    };
    return isClient ? find(Clients) : find(Servers);
}

}  // namespace kel
