#pragma once

#include <set>
#include <string>
#include <vector>

#include "probes/software/SoftwareFunctions.h"
#include "support/Machines.h"
#include "support/ScratchKey.h"

namespace kel::test {

/// A version record, as in a program's resources.
std::vector<BYTE> MakeVersionRecord(const std::wstring& version);

/// Plants a machine's software in the registry and in a table of functions, which records the requests.
///
/// "64", "32" and "CU" are registry keys of a view: the path below SOFTWARE, and values as "name=text" or
/// "name=#number"; "U:" in front of the path is the list of programs, "A:" App Paths. "file" is a path and a
/// version, none for a file without a version record; "package" a package's family, full name and folder;
/// "host" the program that the control runs in.
class PlantedSoftware {
public:
    explicit PlantedSoftware(const Machine& machine);
    PlantedSoftware(const PlantedSoftware&) = delete;
    PlantedSoftware& operator=(const PlantedSoftware&) = delete;

    /// Plants the machine's keys, or writes their texts with another type.
    void Plant(const Machine& machine, DWORD type = REG_SZ);

    SoftwareFunctions functions;
    std::set<std::wstring> keys, files;  ///< that were asked for, keys below SOFTWARE
    ScratchKey machineKeys, userKeys;

private:
    void PlantKey(const std::wstring& view, const std::wstring& line, DWORD type);
};

/// Runs the three detectors and returns what they found, as "id[index]=text" lines.
Lines FindSoftware(const SoftwareFunctions& functions);

}  // namespace kel::test
