#include <algorithm>
#include <utility>

#include "server/admin/FailingLine.h"
#include "server/admin/Layout.h"
#include "server/admin/Pages.h"
#include "server/admin/ReportsTable.h"
#include "server/admin/kit/Texts.h"
#include "server/store/Reports.h"
#include "verdict/text/SessionNumber.h"

namespace kel::server {

namespace {

constexpr int PageRows = 50;
constexpr std::int64_t Day = 86'400'000;  // milliseconds
constexpr const char* Names[] = {"referrer", "verdict", "from",    "until",
                                 "session",  "user",    "machine", "line"};

/// The address of another page of the list, with the same filters.
std::string ListAddress(const AdminRequest& request, const std::string& place, std::int64_t id)
{
    std::string address = "/reports?" + place + "=" + std::to_string(id);
    for (const char* name : Names) {
        if (const std::string value = request.Query(name); !value.empty())
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

Html FilterForm(const AdminRequest& request)
{
    return Html::Element(
        "form", {{"method", "get"}, {"action", "/reports"}, {"class", "card filter"}},
        {Field("Product", "referrer", request.Query("referrer")), VerdictField(request.Query("verdict")),
         Field("From", "from", request.Query("from"), "date"),
         Field("Until", "until", request.Query("until"), "date"),
         Field("Session, or its number", "session", request.Query("session")),
         Field("User", "user", request.Query("user")), Field("Machine", "machine", request.Query("machine")),
         Field("Failing line of the product", "line", request.Query("line")),
         Html::Element("div", {{"class", "field"}}, Button("Show", "primary"))});
}

/// The filter for a session: the text can be its short number.
void FilterBySession(ReportFilter& filter, const std::string& text)
{
    filter.beginnings = SessionBeginnings(Trim(text));
    if (filter.beginnings.empty())
        filter.session = text;
}

/// The filter for the label of a line that fails, and a sentence about it.
Html FilterByLine(const AdminRequest& request, ReportFilter& filter, const std::string& label)
{
    if (label.empty())
        return {};
    filter.ids.emplace();
    if (filter.referrer.empty())
        return Notice("bad", "A line belongs to a product: fill in the product, too.");
    FailingReports found = FailingReports::Find(request.database, filter.referrer, label);
    filter.ids = std::move(found.ids);
    return Notice("note", {"Reports in whose verdict the line " + Html::Stored(label) + " fails, of " +
                           found.searched.Text() + "."});
}

}  // namespace

Answer ShowReports(const AdminRequest& request)
{
    ReportFilter filter;
    filter.referrer = request.Query("referrer");
    filter.user = request.Query("user");
    filter.machine = request.Query("machine");
    FilterBySession(filter, request.Query("session"));
    const Html lineNotice = FilterByLine(request, filter, request.Query("line"));
    const std::string verdict = request.Query("verdict");
    filter.total = ParseResult(verdict);
    filter.from = ParseDay(request.Query("from")).value_or(0);
    if (const auto until = ParseDay(request.Query("until")))
        filter.until = *until + Day;
    // A page begins at an id and not at a row number, so new reports do not shift it.
    const std::int64_t before = WholeNumber(request.Query("before")),
                       after = WholeNumber(request.Query("after"));
    filter.beforeId = std::max(before, std::int64_t{0});
    filter.afterId = before > 0 ? -1 : after;
    filter.count = PageRows + 1;
    const bool isAscending = filter.afterId >= 0;

    std::vector<ReportLine> lines;
    if (verdict.empty() || filter.total)  // no report has another verdict
        lines = Reports(request.database).List(filter);
    const bool goesOn = lines.size() > PageRows;
    if (goesOn)
        lines.pop_back();
    if (isAscending)
        std::reverse(lines.begin(), lines.end());
    Html pages;
    if (!lines.empty() && (before > 0 || (isAscending && goesOn)))
        pages += Link(ListAddress(request, "after", lines.front().id), "← Newer");
    if (!lines.empty() && (isAscending ? after > 0 : goesOn))
        pages += Link(ListAddress(request, "before", lines.back().id), "Older →");
    Html content;
    if (request.Query("note") == "deleted")
        content += Notice("good", "The session's reports are deleted.");
    if (request.Query("note") == "left")
        content += Notice("note",
                          "The session has more reports than one deletion takes. Delete again for the rest.");
    content += FilterForm(request) + lineNotice +
               ReportsTable("Reports, the newest first", lines, "No reports here.");
    if (!pages.IsEmpty())
        content += Html::Element("nav", {{"class", "pages"}, {"aria-label", "More reports"}}, pages);
    return Page(request, "Reports", content);
}

}  // namespace kel::server
