#include "detectors/DirectXRules.h"

#include <utility>

namespace kel {

namespace {

/// Releases before version 10 by the prefix of their number in the registry, newest first.
constexpr std::pair<const wchar_t*, const wchar_t*> Releases[] = {
    {L"4.09.00.0904", L"9.0C"}, {L"4.09.0000.0904", L"9.0C"},
    {L"4.09.00.0902", L"9.0B"}, {L"4.09.00.0901", L"9.0A"},
    {L"4.09", L"9.0"},          {L"4.08.01", L"8.1"},
    {L"4.08", L"8.0"},          {L"4.07", L"7.0"},
};

const wchar_t* VersionOf11(DWORD major, DWORD minor)
{
    if (major == 6 && minor == 3)
        return L"11.2";
    return major == 6 && minor == 2 ? L"11.1" : L"11.0";
}

}  // namespace

std::optional<Version> RuntimeOfLibraries(const boost::function<bool(const wchar_t*)>& hasLibrary,
                                          DWORD major, DWORD minor)
{
    const std::pair<const wchar_t*, const wchar_t*> libraries[] = {
        {L"d3d12.dll", L"12.0"},
        {L"d3d11.dll", VersionOf11(major, minor)},
        {L"d3d10_1.dll", L"10.1"},
        {L"d3d10.dll", L"10.0"},
    };
    for (const auto& [library, version] : libraries) {
        if (hasLibrary(library))
            return Version(version);
    }
    return {};
}

std::optional<Version> RuntimeOfRegistry(const std::wstring& registered)
{
    for (const auto& [start, version] : Releases) {
        if (registered.starts_with(start))
            return Version(version);
    }
    return {};
}

}  // namespace kel
