#include "kit/Recording.h"

#include <windows.h>

#include <algorithm>
#include <set>
#include <string_view>
#include <vector>

#include "kit/DeviceMasks.h"
#include "kit/RecordedDevices.h"
#include "kit/RecordedSystem.h"
#include "masking/Masker.h"
#include "service/Utf8.h"
#include "verdict/Catalogue.h"

namespace kel::kit {

namespace {

using Names = std::vector<std::string_view>;

/// The detectors of processor, memory, firmware, board, chassis and system, which are always recorded.
const Names SystemDetectors = {"CPU", "Bios", "Chassis", "MotherBoard", "OS", "Ram"};
/// All that can be recorded, in the order in which the tests run them.
const Names Detectors = {"CPU",      "GPU",       "Bios",         "CDRom",       "Chassis",       "DVD",
                         "Graphics", "HardDrive", "LogicalDrive", "MotherBoard", "NetworkDevice", "OS",
                         "Ram",      "Sound",     "Monitor",      "SCSI"};

/// What the recording does not hold: the tests' own processors, locale and identifier, the number of
/// processors, memory and space that is free at the moment, the .NET Framework, cameras and Bluetooth.
const std::set<int> LeftOut = {71207, 71254, 71257, 71388, 71382, 71193, 73470, 73473, 72606, 72612, 73500};
/// The one value that is only read when it is wanted, and is recorded.
constexpr int Wanted = 73404;

constexpr std::size_t MaxLine = 120;  // where one more value fits

/// Whether a line can hold a text: the tests divide lines at "; ".
bool CanHold(const std::string& text)
{
    return std::ranges::none_of(text, [](char c) { return (c >= 0 && c < ' ') || c == 0x7F; }) &&
           text.find("; ") == std::string::npos;
}

/// The values as "=" lines, and their ids as ranges.
void AddValues(const Snapshot& snapshot, const Names& detectors, std::string& ids, std::string& values)
{
    for (const std::string_view detector : detectors) {
        for (const Fact& fact : snapshot.facts) {
            const CatalogueValue* const known = FindCatalogueValue(fact.id);
            if (known == nullptr || known->Detector() != detector || LeftOut.contains(fact.id) ||
                (known->isGated && fact.id != Wanted) || !CanHold(fact.text))
                continue;
            const std::string id = std::to_string(fact.id);
            ids.append(ids.empty() ? "" : " ").append(id).append("-").append(id);
            const std::string value = id + "[" + std::to_string(fact.index) + "]=" + fact.text;
            if (const std::size_t start = values.rfind('\n') + 1;
                values.size() - start + value.size() < MaxLine)
                values += (values.empty() ? "= " : "; ") + value;
            else
                values += "\n= " + value;
        }
    }
}

}  // namespace

std::string RecordMachine(const Snapshot& snapshot)
{
    Masker masker = Masker::OfSystem();
    for (const Fact& fact : snapshot.facts)
        masker.Keep(FromUtf8(fact.text));
    DeviceMasks masks(masker);
    const DeviceRecording devices = RecordDevices(DeviceEdges::OfSystem(), masks);
    Names detectors = Detectors;
    std::erase_if(detectors, [&devices](std::string_view detector) {
        return std::ranges::count(SystemDetectors, detector) == 0 && !devices.detectors.contains(detector);
    });
    std::string ids;
    std::string values;
    AddValues(snapshot, detectors, ids, values);
    std::string recorded =
        "machine recorded, " + snapshot.windows + "\nwanted " + std::to_string(Wanted) + "\nlog *\ndetectors";
    for (const std::string_view detector : detectors)
        recorded += " " + std::string(detector);
    recorded += "\nids " + ids + "\n";
    for (const std::string& line : RecordSystem(snapshot))
        recorded += ToUtf8(masker.Mask(FromUtf8(line))) + "\n";
    for (const std::string& line : devices.lines)
        recorded += line + "\n";
    return recorded + values + "\n";
}

}  // namespace kel::kit
