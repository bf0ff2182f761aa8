#include "server/admin/AuditPage.h"

#include <algorithm>

#include "server/admin/Layout.h"
#include "server/admin/Table.h"
#include "server/admin/ValueNames.h"

namespace kel::server {

namespace {

constexpr int PageRows = 100;

}  // namespace

Answer AuditPage::Show(const Visit& visit) const
{
    const std::int64_t before = std::max(WholeNumber(visit.Query("before")), std::int64_t{0});
    Table table("Who did what, the newest first", {{"Time (UTC)"}, {"Account"}, {"Did"}, {"What"}});
    const auto notes = store.Notes(before, PageRows);
    for (const AuditLine& note : notes)
        table.Add({Moment(note.time), Html::Stored(note.account), note.action,
                   note.subject.empty() ? Html("–") : Html::Stored(note.subject)});
    Html content = table.Done("Nothing was noted.");
    if (notes.size() == PageRows)
        content += Html::Element("nav", {{"class", "pages"}, {"aria-label", "More entries"}},
                                 Link("/audit?before=" + std::to_string(notes.back().id), "Older →"));
    return Page(visit, "Audit", content);
}

Answer ShowValues(const Visit& visit)
{
    Table table("Values by their ids", {{"Id"}, {"Detector"}, {"What"}});
    for (const ValueName& value : ValueNames)
        table.Add({std::to_string(value.id), value.detector, value.name});
    return Page(visit, "Values",
                Html::Element("p", {{"class", "lead"}},
                              "What requirements can ask for, by the number that stands in them as \"id\".") +
                    table.Done(""));
}

}  // namespace kel::server
