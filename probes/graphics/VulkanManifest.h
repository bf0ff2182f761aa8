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

/// Reads the first 64 KB of a file on a fixed disk. Returns an empty text for a path without a drive letter
/// or on another kind of drive, and for a file that cannot be read.
std::string ReadSmallFile(const std::wstring& path);

}  // namespace kel
