#include "program/files/ReadSnapshot.h"

#include "program/files/File.h"
#include "program/files/ReportXml.h"
#include "program/text/UserError.h"
#include "verdict/files/FileError.h"
#include "verdict/files/MachineFile.h"

namespace kel::program {

Snapshot ReadSnapshot(std::string_view bytes)
{
    try {
        return ReadMachineFile(bytes, &ReadReportXml);
    } catch (const FileError& error) {
        throw UserError(error.what());
    }
}

Snapshot ReadSnapshotFile(const std::string& path)
{
    try {
        return ReadSnapshot(ReadFile(path, MaxMachineFile));
    } catch (const UserError& error) {
        throw UserError(path + ": " + error.what());
    }
}

}  // namespace kel::program
