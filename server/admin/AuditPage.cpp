#include <fmt/format.h>
#include <algorithm>

#include "server/admin/Layout.h"
#include "server/admin/Pages.h"
#include "server/admin/Period.h"
#include "server/admin/kit/Table.h"
#include "server/admin/kit/Texts.h"
#include "server/store/Audit.h"

namespace kel::server {

namespace {

Html AuditForm(const AuditFilter& filter, const Period& period)
{
    return Html::Element(
        "form", {{"method", "get"}, {"action", "/audit"}, {"class", "card filter"}},
        {Field("Account", "account", filter.account), Field("Did or what contains", "text", filter.text),
         Field("From", "from", period.From(), "date"), Field("Until", "until", period.Until(), "date"),
         Html::Element("div", {{"class", "field"}}, Button("Show", "primary"))});
}

}  // namespace

Answer ShowAudit(const AdminRequest& request)
{
    const Period period = Period::Read(request, Period::All);
    AuditFilter filter{request.Query("account"), request.Query("text")};
    filter.from = period.FromTime();
    filter.until = period.UntilTime();
    filter.beforeId = std::max(WholeNumber(request.Query("before")), std::int64_t{0});
    const std::string words =
        fmt::format("&account={}&text={}", UrlEncode(filter.account), UrlEncode(filter.text));
    Html content = Html::Element("div", {{"class", "period"}}, period.Links("/audit", words)) +
                   AuditForm(filter, period);
    if (const std::string problem = Period::Problem(request); !problem.empty())
        return Page(request, "Audit", Notice("bad", problem) + content);
    Table table("Audit entries, the newest first", {{"Time (UTC)"}, {"Account"}, {"Did"}, {"What"}}, "dense");
    const auto entries = Audit(request.database).Entries(filter);
    for (const AuditEntry& entry : entries)
        table.Add({Moment(entry.time), Html::Stored(entry.account), entry.action,
                   entry.subject.empty() ? Html("–") : Html::Stored(entry.subject)});
    const bool isFiltered =
        !filter.account.empty() || !filter.text.empty() || !period.IsAll() || filter.beforeId > 0;
    content += table.Done(isFiltered ? "No entries. " + Link("/audit", "Show all entries") : "No entries.");
    if (static_cast<int>(entries.size()) == filter.count) {
        const std::string older =
            fmt::format("/audit?{}{}&before={}", period.Query(), words, entries.back().id);
        content += Html::Element("nav", {{"class", "pages"}, {"aria-label", "More entries"}},
                                 Link(older, "Older →"));
    }
    return Page(request, "Audit", content);
}

}  // namespace kel::server
