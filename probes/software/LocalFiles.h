#pragma once

#include <array>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ErrorMode.h"
#include "probes/software/SoftwareFunctions.h"

namespace kel {

/// Files on the machine's own disks. Remote, removable and optical drives are never accessed, and each file's
/// version is read once. While it exists, the system shows no error boxes in this thread.
class LocalFiles {
public:
    /// @param newFunctions must outlive this object
    explicit LocalFiles(const SoftwareFunctions& newFunctions) : functions(newFunctions) {}

    /// The first of a product's programs that a folder has; empty when it has none.
    /// @param folder may begin with a variable; empty for none
    /// @param programs paths below the folder, separated by bars; each is also tried by its file name only
    std::wstring FindBelow(std::wstring_view folder, std::wstring_view programs);

    /// The program that a command names, if its file name is one of the product's and the file exists.
    std::wstring FindNamed(const std::wstring& command, std::wstring_view programs);

    /// The file's version; empty when it has none or must not be read.
    std::wstring ReadVersion(const std::wstring& path);

private:
    bool IsThere(const std::wstring& path);
    bool IsOnFixedDrive(const std::wstring& path);

    const SoftwareFunctions& functions;
    std::array<UINT, 26> driveTypes{};  // DRIVE_UNKNOWN: not read yet
    std::map<std::wstring, std::wstring> versions;
    ErrorMode quiet;
};

}  // namespace kel
