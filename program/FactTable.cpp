#include "program/FactTable.h"

#include <algorithm>
#include <utility>

#include "program/text/Table.h"
#include "verdict/Catalogue.h"

namespace kel::program {

namespace {

constexpr const char* OtherArea = "other";

/// The areas, each once, in the catalogue's order.
std::vector<std::string> Areas()
{
    std::vector<std::string> areas;
    for (const CatalogueValue& value : CatalogueValues) {
        if (std::find(areas.begin(), areas.end(), value.Area()) == areas.end())
            areas.emplace_back(value.Area());
    }
    areas.emplace_back(OtherArea);
    return areas;
}

Cell TextCell(const Fact& fact)
{
    if (!fact.text.empty())
        return {fact.text};
    return {fact.reason.empty() ? "–" : "– " + fact.reason, Colour::Unsure};
}

}  // namespace

std::string AreaOf(int id)
{
    const CatalogueValue* known = FindCatalogueValue(id);
    return known != nullptr ? known->Area() : OtherArea;
}

int WriteFacts(Output& output, const Snapshot& snapshot, bool showsEmpty)
{
    std::vector<Fact> facts = snapshot.facts;
    facts.insert(facts.end(), snapshot.missing.begin(), snapshot.missing.end());
    int leftOut = 0;
    for (const std::string& area : Areas()) {
        Table table({"", "", ""});
        for (const Fact& fact : facts) {
            if (AreaOf(fact.id) != area)
                continue;
            if (fact.text.empty() && !showsEmpty)
                ++leftOut;
            else
                table.AddRow({{std::to_string(fact.id)}, {NameOf(fact)}, TextCell(fact)});
        }
        if (table.IsEmpty())
            continue;
        output.WriteLine(area, Colour::Strong);
        table.Write(output, 2);
    }
    return leftOut;
}

}  // namespace kel::program
