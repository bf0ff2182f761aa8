#include <algorithm>

#include "server/admin/Layout.h"
#include "server/admin/Pages.h"
#include "server/admin/kit/Table.h"
#include "server/store/Audit.h"

namespace kel::server {

namespace {

constexpr int MaxEntries = 100;

}  // namespace

Answer ShowAudit(const AdminRequest& request)
{
    const std::int64_t before = std::max(WholeNumber(request.Query("before")), std::int64_t{0});
    Table table("Audit entries, the newest first", {{"Time (UTC)"}, {"Account"}, {"Did"}, {"What"}});
    const auto notes = Audit(request.database).Entries(before, MaxEntries);
    for (const AuditEntry& note : notes)
        table.Add({Moment(note.time), Html::Stored(note.account), note.action,
                   note.subject.empty() ? Html("–") : Html::Stored(note.subject)});
    Html content = table.Done("No entries.");
    if (notes.size() == MaxEntries)
        content += Html::Element("nav", {{"class", "pages"}, {"aria-label", "More entries"}},
                                 Link("/audit?before=" + std::to_string(notes.back().id), "Older →"));
    return Page(request, "Audit", content);
}

}  // namespace kel::server
