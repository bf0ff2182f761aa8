#include "kit/Recording.h"

#include <windows.h>

#include <algorithm>
#include <set>
#include <string_view>
#include <vector>

#include "kit/RecordedSystem.h"
#include "kit/RecordedVolumes.h"
#include "masking/Masker.h"
#include "service/Utf8.h"
#include "verdict/Catalogue.h"

namespace kel::kit {

namespace {

using Names = std::vector<std::string_view>;

constexpr std::string_view VolumeDetector = "LogicalDrive";
/// In the order in which the tests run them.
const Names Detectors = {"CPU", "Bios", "Chassis", VolumeDetector, "MotherBoard", "OS", "Ram"};

/// What the recording does not hold: the tests' own processors, locale and identifier, the number of
/// processors, memory and space that is free at the moment, the .NET Framework, and devices.
const std::set<int> LeftOut = {71207, 71254, 71257, 71388, 71382, 71193, 73470, 73473, 72606, 72612, 73500};

bool IsAscii(const std::string& text)
{
    return std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; });
}

/// The values as "=" lines, and their ids as ranges.
void AddValues(const Snapshot& snapshot, const Names& detectors, std::string& ids, std::string& values)
{
    for (const std::string_view detector : detectors) {
        for (const Fact& fact : snapshot.facts) {
            const CatalogueValue* const known = FindCatalogueValue(fact.id);
            // The tests divide a line at "; ".
            if (known == nullptr || known->Detector() != detector || LeftOut.contains(fact.id) ||
                !IsAscii(fact.text) || fact.text.find("; ") != std::string::npos)
                continue;
            const std::string id = std::to_string(fact.id);
            ids += (ids.empty() ? "" : " ") + id + "-" + id;
            values += "= " + id + "[" + std::to_string(fact.index) + "]=" + fact.text + "\n";
        }
    }
}

}  // namespace

std::string RecordMachine(const Snapshot& snapshot)
{
    std::vector<std::string> lines = RecordSystem(snapshot);
    const std::vector<std::string> volumes = RecordVolumes(snapshot);
    lines.insert(lines.end(), volumes.begin(), volumes.end());
    Names detectors = Detectors;
    if (volumes.empty())
        std::erase(detectors, VolumeDetector);
    std::string ids;
    std::string values;
    AddValues(snapshot, detectors, ids, values);
    Masker masker = Masker::OfSystem();
    for (const Fact& fact : snapshot.facts)
        masker.Keep(FromUtf8(fact.text));
    std::string recorded = "machine recorded, " + snapshot.windows + "\nwanted 73404\ndetectors";
    for (const std::string_view detector : detectors)
        recorded += " " + std::string(detector);
    recorded += "\nids " + ids + "\n";
    for (const std::string& line : lines)
        recorded += ToUtf8(masker.Mask(FromUtf8(line))) + "\n";
    std::ranges::replace_if(
        recorded, [](char c) { return c < 0; }, '?');
    return recorded + values;
}

}  // namespace kel::kit
