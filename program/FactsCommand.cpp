#include <algorithm>
#include <charconv>
#include <set>
#include <string>
#include <vector>

#include "program/Commands.h"
#include "program/FactTable.h"
#include "program/machine/Machine.h"
#include "program/text/Output.h"
#include "program/text/UserError.h"
#include "verdict/Catalogue.h"
#include "verdict/files/SupportFile.h"
#include "verdict/text/Csv.h"

namespace kel::program {

namespace {

/// The ids that a subject of the command line stands for.
std::vector<int> ReadSubject(const std::string& subject)
{
    std::vector<int> ids;
    int id = 0;
    const auto [end, error] = std::from_chars(subject.data(), subject.data() + subject.size(), id);
    if (error == std::errc() && end == subject.data() + subject.size() && FindCatalogueValue(id) != nullptr)
        ids.push_back(id);
    std::string areas;
    for (const CatalogueValue& value : CatalogueValues) {
        if (value.Area() == subject)
            ids.push_back(value.id);
        if (areas.find(value.Area()) == std::string::npos)
            areas += (areas.empty() ? "" : ", ") + std::string(value.Area());
    }
    if (ids.empty())
        throw UserError("\"" + subject + "\" is neither an id nor an area. Areas: " + areas + ".");
    return ids;
}

void WriteCsv(Output& output, const std::vector<Fact>& facts)
{
    output.Write(CsvRecord({"id", "index", "area", "name", "value", "reason"}));
    for (const Fact& fact : facts) {
        const CatalogueValue* known = FindCatalogueValue(fact.id);
        output.Write(CsvRecord({std::to_string(fact.id), std::to_string(fact.index), AreaOf(fact.id),
                                known != nullptr ? known->Name() : "", fact.text, fact.reason}));
    }
}

}  // namespace

int ShowFacts(const Options& options)
{
    std::set<int> asked;
    for (const std::string& subject : options.subjects) {
        const std::vector<int> ids = ReadSubject(subject);
        asked.insert(ids.begin(), ids.end());
    }
    std::vector<unsigned> groups = AllGroups();
    // A whole area does not use the network; an id does.
    for (const int id : asked) {
        if (UsesNetwork(id) &&
            std::count(options.subjects.begin(), options.subjects.end(), std::to_string(id)) > 0)
            groups.push_back(static_cast<unsigned>(id));
    }
    Snapshot snapshot = ReadMachine(groups);
    if (!asked.empty()) {
        const auto isOther = [&](const Fact& fact) { return !asked.contains(fact.id); };
        std::erase_if(snapshot.facts, isOther);
        std::erase_if(snapshot.missing, isOther);
    }
    Output& output = Output::Standard();
    if (options.asJson) {
        output.Write(WriteSupportFile(snapshot));
    } else if (options.asCsv) {
        WriteCsv(output, snapshot.facts);
    } else {
        const int leftOut = WriteFacts(output, snapshot, options.showsReasons);
        if (leftOut > 0)
            output.WriteLine(std::to_string(leftOut) + " more are empty: \"kel facts --why\" shows why.");
    }
    return 0;
}

}  // namespace kel::program
