#include "server/admin/RequestedValues.h"

#include <algorithm>

#include "server/admin/ValueNames.h"
#include "server/admin/kit/Table.h"
#include "server/admin/kit/Texts.h"
#include "verdict/Catalogue.h"

namespace kel::server {

namespace {

bool Contains(const std::vector<int>& groups, int group)
{
    return std::find(groups.begin(), groups.end(), group) != groups.end();
}

/// Whether the line asks for any index of a value that has only one.
bool IsOfAnyInVain(const Requirement& line, int group)
{
    const CatalogueValue* known = FindCatalogueValue(group);
    return known && !known->hasIndexes &&
           std::any_of(line.anyOf.begin(), line.anyOf.end(), [&](const Alternative& alternative) {
               return alternative.ofAny && alternative.allOf.size() == 1 &&
                      alternative.allOf.front().group == group;
           });
}

void Append(std::string& note, std::string_view sentence)
{
    if (!note.empty() && !sentence.empty())
        note += " ";
    note += sentence;
}

}  // namespace

RequestedValues::RequestedValues(const Requirements& draft, const std::optional<Requirements>& inForce)
{
    const std::vector<int> asked = inForce ? inForce->Groups() : std::vector<int>();
    for (const Requirement& line : draft.lines) {
        for (const int group : line.Groups()) {
            auto value = std::find_if(values.begin(), values.end(),
                                      [=](const Value& listed) { return listed.id == group; });
            if (value == values.end()) {
                const CatalogueValue* known = FindCatalogueValue(group);
                value = values.insert(
                    value,
                    {group, 0,
                     known ? known->Caution() : "The control has no such value: only a page can set it."});
                if (!Contains(asked, group))
                    Append(value->note, "The published requirements do not ask for it.");
            }
            constexpr std::string_view InVain = "It has one value, so \"of\": \"any\" has no effect.";
            if (IsOfAnyInVain(line, group) && value->note.find(InVain) == std::string::npos)
                Append(value->note, InVain);
        }
    }
}

void RequestedValues::Count(const Report& report)
{
    for (Value& value : values)
        value.reports += report.Has(value.id) ? 1 : 0;
}

Html RequestedValues::Show(const RecentSessions& sessions) const
{
    Table table("Values that the draft asks for", {{"Id"}, {"Value"}, {"Reported by", true}, {"Note"}});
    for (const Value& value : values) {
        const std::string id = std::to_string(value.id);
        table.Add({id, NameOfValue(id),
                   sessions.count == 0 ? std::string("–")
                                       : Grouped(value.reports) + " of " + Grouped(sessions.count),
                   value.note});
    }
    return table.Done("The draft asks for no value.");
}

}  // namespace kel::server
