#pragma once

#include <windows.h>

#include <boost/function.hpp>
#include <optional>
#include <string>

#include "values/Version.h"

namespace kel {

/// The version of the DirectX runtime that Windows has, whatever the adapter can do. Nullopt before version
/// 10: the registry has those.
/// @param hasLibrary whether the system's folder has a file of the name
/// @param major, minor the system's real version, not the one that it reports to old programs
std::optional<Version> RuntimeOfLibraries(const boost::function<bool(const wchar_t*)>& hasLibrary,
                                          DWORD major, DWORD minor);

/// The same from the version in the registry, such as "4.09.00.0904", where there are no newer libraries.
std::optional<Version> RuntimeOfRegistry(const std::wstring& registered);

}  // namespace kel
