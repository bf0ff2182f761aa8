#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "probes/setup/SetupEntryPoints.h"

namespace kel {

/// Closes an INF file with the library's function.
struct InfCloser {
    decltype(&SetupCloseInfFile) close = nullptr;
    void operator()(void* file) const noexcept { close(file); }
};

/// A driver's INF file, open for reading through the Setup API.
class InfFile {
public:
    /// Opens a file of the system's "inf" folder. One that is missing or malformed has no models.
    /// @param newEntryPoints must outlive this object
    InfFile(const SetupEntryPoints& newEntryPoints, const std::wstring& fileName);

    /// Searches the models of all manufacturers for a hardware id of a device that contains a text.
    /// @param lowerCaseText such as "ven_8086&dev_1916"
    /// @param hardwareIds all that the device has, in any case
    /// @return the first such id, as the file has it; empty when there is none
    std::wstring FindModel(std::wstring_view lowerCaseText,
                           const std::vector<std::wstring>& hardwareIds) const;

private:
    /// Calls a function with the fields of each line of a section, until it returns true.
    template <typename Visit>
    void Walk(const std::wstring& section, Visit visit) const;

    std::vector<std::wstring> Fields(INFCONTEXT& line) const;

    const SetupEntryPoints& entryPoints;
    std::unique_ptr<void, InfCloser> file;
};

}  // namespace kel
