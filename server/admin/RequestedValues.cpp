#include "server/admin/RequestedValues.h"

#include <algorithm>

#include "server/admin/ReportQuery.h"
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
            const auto value = std::find_if(values.begin(), values.end(),
                                            [=](const Value& listed) { return listed.id == group; });
            if (value != values.end())
                continue;
            const CatalogueValue* known = FindCatalogueValue(group);
            values.push_back({group, 0, Contains(asked, group), known ? known->Caution() : "Unknown id."});
            if (!values.back().isAsked)
                Append(values.back().note, "The published requirements do not ask for it.");
        }
    }
}

std::vector<int> RequestedValues::FindUnreported() const
{
    std::vector<int> ids;
    for (const Value& value : values) {
        if (value.isAsked && value.reports == 0)
            ids.push_back(value.id);
    }
    return ids;
}

void RequestedValues::Count(const Report& report)
{
    for (Value& value : values)
        value.reports += report.Has(value.id) ? 1 : 0;
}

Html RequestedValues::Show(const std::string& referrer, const RecentSessions& sessions) const
{
    Table table("Values that the draft asks for", {{"Id"}, {"Value"}, {"Reported by", true}, {"Note"}},
                "dense");
    const ReportQuery reports{referrer, {}};
    for (const Value& value : values) {
        const std::string id = std::to_string(value.id);
        table.Add({id, NameOfValue(id),
                   sessions.count == 0
                       ? Html("–")
                       : CountLink(reports.WithValue({value.id, "any", "", true}), value.reports) + " of " +
                             Grouped(sessions.count),
                   value.note});
    }
    return table.Done("The draft asks for no value.");
}

}  // namespace kel::server
