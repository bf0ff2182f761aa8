#include "program/files/ReadSnapshot.h"

#include <nlohmann/json.hpp>

#include "program/files/File.h"
#include "program/files/ReportXml.h"
#include "program/files/SupportFile.h"
#include "program/text/UserError.h"
#include "service/Utf8.h"
#include "verdict/text/Text.h"

namespace kel::program {

namespace {

using nlohmann::json;

constexpr int MaxNesting = 16;
constexpr std::string_view Utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view Utf16Mark = "\xFF\xFE";
constexpr const char* NotKnown =
    "The file is neither one that kel report wrote, nor a report of the control, nor the service's export.";

std::string ToPlainUtf8(std::string_view bytes)
{
    if (bytes.starts_with(Utf16Mark)) {
        std::wstring wide;
        for (std::size_t at = Utf16Mark.size(); at + 1 < bytes.size(); at += 2)
            wide += static_cast<wchar_t>(static_cast<unsigned char>(bytes[at]) |
                                         static_cast<unsigned char>(bytes[at + 1]) << 8);
        return ToUtf8(wide);
    }
    if (bytes.starts_with(Utf8Mark))
        bytes.remove_prefix(Utf8Mark.size());
    return std::string(bytes);
}

json Parse(const std::string& text)
{
    try {
        return json::parse(text, [](int depth, json::parse_event_t, json&) {
            if (depth > MaxNesting)
                throw UserError("The file is nested too deeply for one of kel's. Ask for the file again.");
            return true;
        });
    } catch (const json::parse_error& error) {
        throw UserError("The file is damaged or cut off at byte " + std::to_string(error.byte) +
                        ". Ask for the file again.");
    }
}

/// The newest of the reports that the service's export has.
Snapshot ReadExport(const json& content)
{
    try {
        const json& reports = content.at("reports");
        if (!reports.is_array() || reports.empty())
            throw UserError("The service's export has no reports. Ask it with a smaller \"after\".");
        const json& report = reports.back();
        Snapshot snapshot;
        snapshot.time = report.value("received", "");
        snapshot.product = report.value("referrer", "");
        snapshot.facts = ReadFacts(report.at("values"));
        return snapshot;
    } catch (const json::exception&) {
        throw UserError("The service's export is damaged. Ask for the file again.");
    }
}

}  // namespace

Snapshot ReadSnapshot(std::string_view bytes)
{
    const std::string text = ToPlainUtf8(bytes);
    const std::string_view begin = Trim(text);
    if (begin.starts_with('<')) {
        Snapshot snapshot;
        snapshot.facts = ReadReportXml(begin);
        return snapshot;
    }
    if (!begin.starts_with('{'))
        throw UserError(NotKnown);
    const json content = Parse(text);
    if (content.contains(SupportFileMark))
        return ReadSupportFile(content);
    if (content.contains("reports"))
        return ReadExport(content);
    throw UserError(NotKnown);
}

Snapshot ReadSnapshotFile(const std::string& path)
{
    try {
        return ReadSnapshot(ReadFile(path, MaxSnapshotFile));
    } catch (const UserError& error) {
        throw UserError(path + ": " + error.what());
    }
}

}  // namespace kel::program
