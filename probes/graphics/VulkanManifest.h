// The file by which a driver announces itself to Vulkan's loader.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "values/Version.h"

namespace kel {

/// Reads the version of Vulkan ("api_version") in the text of a manifest, such as 1.3.260. The text is
/// untrusted; nullopt when it has no such version.
std::optional<Version> ReadVulkanVersion(std::string_view manifest);

/// Reads the first 64 KB of a file on a fixed disk. A path that is not one of a drive, or leads to a drive of
/// another kind, gives an empty text, as does a file that cannot be read.
std::string ReadSmallFile(const std::wstring& path);

}  // namespace kel
