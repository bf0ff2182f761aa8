#include "verdict/files/MachineFile.h"

#include <nlohmann/json.hpp>
#include <string>

#include "verdict/files/FileError.h"
#include "verdict/files/SupportFile.h"
#include "verdict/text/Text.h"
#include "verdict/text/Utf8.h"

namespace kel {

namespace {

using nlohmann::json;

constexpr int MaxNesting = 16;
constexpr int MaxElements = 500'000;  // each takes many times its bytes
constexpr std::string_view Utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view Utf16Mark = "\xFF\xFE";
constexpr const char* NotKnown =
    "The file is neither one that kel report wrote, nor a report of the control, nor the service's export.";

std::string ToPlainUtf8(std::string_view bytes)
{
    if (bytes.starts_with(Utf16Mark))
        return FromUtf16(bytes.substr(Utf16Mark.size()));
    if (bytes.starts_with(Utf8Mark))
        bytes.remove_prefix(Utf8Mark.size());
    return std::string(bytes);
}

json ParseFile(const std::string& text)
{
    int elements = 0;
    try {
        return json::parse(text, [&elements](int depth, json::parse_event_t, json&) {
            if (depth > MaxNesting)
                throw FileError("The file is nested too deeply for one of kel's. Ask for the file again.");
            if (++elements > MaxElements)
                throw FileError("The file has more elements than one of kel's. Ask for the file again.");
            return true;
        });
    } catch (const json::parse_error& error) {
        throw FileError("The file is damaged or cut off at byte " + std::to_string(error.byte) +
                        ". Ask for the file again.");
    } catch (const json::out_of_range&) {
        throw FileError("The file has a number that is too large. Ask for the file again.");
    }
}

/// The newest of the reports that the service's export has.
Snapshot ReadExport(const json& content)
{
    try {
        const json& reports = content.at("reports");
        if (!reports.is_array() || reports.empty())
            throw FileError("The service's export has no reports. Ask it with a smaller \"after\".");
        const json& report = reports.back();
        Snapshot snapshot;
        snapshot.time = report.value("received", "");
        snapshot.product = report.value("referrer", "");
        snapshot.facts = ReadFacts(report.at("values"));
        return snapshot;
    } catch (const json::exception&) {
        throw FileError("The service's export is damaged. Ask for the file again.");
    }
}

}  // namespace

Snapshot ReadMachineFile(std::string_view bytes, ReportReader* readReport)
{
    const std::string text = ToPlainUtf8(bytes);
    const std::string_view begin = Trim(text);
    if (begin.starts_with('<')) {
        Snapshot snapshot;
        snapshot.facts = readReport(begin);
        return snapshot;
    }
    if (!begin.starts_with('{'))
        throw FileError(NotKnown);
    const json content = ParseFile(text);
    if (content.contains(SupportFileMark))
        return ReadSupportFile(content);
    if (content.contains("reports"))
        return ReadExport(content);
    throw FileError(NotKnown);
}

}  // namespace kel
