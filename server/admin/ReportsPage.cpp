#include "server/admin/ReportsPage.h"

#include <algorithm>

#include "server/admin/Layout.h"
#include "server/admin/Table.h"
#include "server/admin/Texts.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

constexpr int PageRows = 50;
constexpr std::int64_t Day = 86'400'000;    // milliseconds
constexpr std::size_t LongestSession = 60;  // bytes that a list shows
constexpr const char* Names[] = {"referrer", "verdict", "from", "until", "session"};

/// The address of the list with the same filters and another place in it.
std::string AddressOf(const Visit& visit, const std::string& place, std::int64_t id)
{
    std::string address = "/reports?" + place + "=" + std::to_string(id);
    for (const char* name : Names) {
        if (const std::string value = visit.Query(name); !value.empty())
            address.append("&").append(name).append("=").append(UrlEncode(value));
    }
    return address;
}

Html VerdictField(const std::string& chosen)
{
    Html options;
    for (const char* value : {"", "pass", "fail", "unknown"}) {
        Html::Attributes attributes{{"value", value}};
        if (chosen == value)
            attributes.emplace_back("selected", "");
        options += Html::Element("option", attributes, *value ? value : "any");
    }
    return Html::Element("div", {{"class", "field"}},
                         {Html::Element("label", {{"for", "verdict"}}, "Verdict"),
                          Html::Element("select", {{"id", "verdict"}, {"name", "verdict"}}, options)});
}

Html FilterForm(const Visit& visit)
{
    return Html::Element(
        "form", {{"method", "get"}, {"action", "/reports"}, {"class", "card filter"}},
        {Field("Product", "referrer", visit.Query("referrer")), VerdictField(visit.Query("verdict")),
         Field("From", "from", visit.Query("from"), "date"),
         Field("Until", "until", visit.Query("until"), "date"),
         Field("Session", "session", visit.Query("session")),
         Html::Element("div", {{"class", "field"}}, Button("Show", "primary"))});
}

}  // namespace

Html ReportsTable(const std::string& caption, const std::vector<ReportLine>& lines,
                  const std::string& whenEmpty)
{
    Table table(caption, {{"Report"}, {"Received (UTC)"}, {"Product"}, {"Session"}, {"Verdict"}});
    for (const ReportLine& line : lines) {
        table.Add({Link(ReportPath(line.id), std::to_string(line.id)), Moment(line.received),
                   line.referrer.empty() ? Html("–") : Link(ProductPath(line.referrer), line.referrer),
                   Html::Stored(Shortened(line.session, LongestSession)), Mark(line.total)});
    }
    return table.Done(whenEmpty);
}

Answer ReportsPage::Show(const Visit& visit) const
{
    ReportFilter filter;
    filter.referrer = visit.Query("referrer");
    filter.session = visit.Query("session");
    filter.total = visit.Query("verdict");
    filter.from = DayOf(visit.Query("from")).value_or(0);
    if (const auto until = DayOf(visit.Query("until")))
        filter.until = *until + Day;
    // A page is a place between ids and not a number of rows, so reports that come in move nothing.
    const std::int64_t before = WholeNumber(visit.Query("before")), after = WholeNumber(visit.Query("after"));
    filter.beforeId = std::max(before, std::int64_t{0});
    filter.afterId = before > 0 ? -1 : after;
    filter.count = PageRows + 1;
    const bool isAscending = filter.afterId >= 0;

    std::vector<ReportLine> lines = store.Reports(filter);
    const bool goesOn = lines.size() > PageRows;
    if (goesOn)
        lines.pop_back();
    if (isAscending)
        std::reverse(lines.begin(), lines.end());
    Html pages;
    if (!lines.empty() && (before > 0 || (isAscending && goesOn)))
        pages += Link(AddressOf(visit, "after", lines.front().id), "← Newer");
    if (!lines.empty() && (isAscending ? after > 0 : goesOn))
        pages += Link(AddressOf(visit, "before", lines.back().id), "Older →");
    Html content;
    if (visit.Query("note") == "deleted")
        content += Notice("good", "The session's reports are deleted.");
    if (visit.Query("note") == "left")
        content += Notice("note", "The session has so many reports that some are left. Delete once more.");
    content += FilterForm(visit) + ReportsTable("Reports, the newest first", lines, "No reports here.");
    if (!pages.IsEmpty())
        content += Html::Element("nav", {{"class", "pages"}, {"aria-label", "More reports"}}, pages);
    return Page(visit, "Reports", content);
}

}  // namespace kel::server
