#pragma once

#include <cstdlib>
#include <filesystem>

namespace kel::test {

/// A file or folder that the tests read: where the build has it, or under the same name in the folder
/// KEL_TEST_FILES, as on a machine without the sources.
inline std::filesystem::path TestFile(const std::filesystem::path& built)
{
    const char* const folder = std::getenv("KEL_TEST_FILES");
    return folder != nullptr ? std::filesystem::path(folder) / built.filename() : built;
}

}  // namespace kel::test
