#pragma once

#include <set>
#include <string>
#include <vector>

#include "probes/SoftwareFunctions.h"
#include "support/ScratchKey.h"
#include "support/Split.h"

namespace kel::test {

/// What is installed on a machine: lines, whose fields have bars between them.
struct SoftwareMachine {
    /// A registry key: its view (64, 32, CU), a blank, its path below SOFTWARE, and values as "name=text" or
    /// "name=#number". "U:" in front of the path is the list of programs, "A:" App Paths.
    std::wstring keys = {};
    std::wstring files = {};   ///< a path and a version; none for a file without a version record
    std::wstring stored = {};  ///< "id=text", but for "No", "0" and empty texts
    std::wstring host = {}, packages = {};  ///< of a package family, full name, folder
};

/// A version record as a program's resources have it.
std::vector<BYTE> MakeVersionRecord(const std::wstring& version);

/// Plants a machine in the registry and in a table of functions, which notes what it is asked for.
class PlantedSoftware {
public:
    explicit PlantedSoftware(const SoftwareMachine& machine);
    PlantedSoftware(const PlantedSoftware&) = delete;
    PlantedSoftware& operator=(const PlantedSoftware&) = delete;

    /// Adds keys in the form of SoftwareMachine::keys, or writes their texts with another type.
    void Plant(const std::wstring& keys, DWORD type = REG_SZ);

    SoftwareFunctions functions;
    std::set<std::wstring> keys, files;  ///< that were asked for, keys below SOFTWARE
    ScratchKey machineKeys, userKeys;
};

/// Runs the three detectors and gives what they stored, as "id[index]=text" lines.
std::vector<std::wstring> DetectSoftware(const SoftwareFunctions& functions);

/// The lines of a machine: every id, with its default where the machine's does not say otherwise.
std::vector<std::wstring> ExpectedSoftware(const SoftwareMachine& machine);

}  // namespace kel::test
