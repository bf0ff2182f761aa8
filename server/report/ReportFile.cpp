#include "server/report/ReportFile.h"

#include <charconv>

#include "server/base/Fault.h"
#include "server/report/Characters.h"
#include "server/report/Report.h"
#include "server/report/Xml.h"
#include "verdict/files/FileError.h"
#include "verdict/files/MachineFile.h"
#include "verdict/text/Text.h"
#include "verdict/text/Utf8.h"

namespace kel::server {

namespace {

constexpr std::size_t MaxFileElements = 100'000;  // in a tree, tiny ones take many times their bytes
constexpr long MaxIndex = 0x7FFFFFFF;

/// The values whose id is a number; only a page can have others.
std::vector<Fact> ReadFactsOfReport(std::string_view text)
{
    std::string xml(text);
    ReplaceForbiddenCharacters(xml);
    if (CountElements(xml) > MaxFileElements)
        throw FileError("The file has more elements than a report of the control.");
    std::vector<Fact> facts;
    try {
        const Report report = Report::ReadValues(xml);
        for (const auto& [key, value] : report.All()) {
            const auto& [id, index] = key;
            int number = 0;
            const auto [end, error] = std::from_chars(id.data(), id.data() + id.size(), number);
            if (error == std::errc() && end == id.data() + id.size() && number > 0 && index >= 0 &&
                index <= MaxIndex)
                facts.push_back({number, static_cast<int>(index), value, ""});
        }
    } catch (const Fault& fault) {
        throw FileError(std::string("The file is not a report of the control: ") + fault.what() + ".");
    }
    return facts;
}

}  // namespace

Snapshot ReadReportFile(std::string_view bytes)
{
    return ReadMachineFile(bytes, &ReadFactsOfReport);
}

std::string WriteReport(const Snapshot& snapshot)
{
    std::string xml = "<groups>";
    for (const Fact& fact : snapshot.facts)
        xml += "<group index=\"" + std::to_string(fact.index) + "\" id=\"" + std::to_string(fact.id) +
               "\"><value>" + Escape(XmlText(fact.text)) + "</value></group>";
    return xml + "</groups>";
}

}  // namespace kel::server
