#include <fmt/format.h>
#include <algorithm>

#include "server/admin/FailingLine.h"
#include "server/admin/Layout.h"
#include "server/admin/Pages.h"
#include "server/admin/ReportQuery.h"
#include "server/admin/ReportSearch.h"
#include "server/admin/ReportsTable.h"
#include "server/admin/SessionTrend.h"
#include "server/admin/kit/Texts.h"
#include "server/store/Reports.h"

namespace kel::server {

namespace {

constexpr int PageRows = 50;

/// A field to choose one of the values; "" is shown as `none`.
Html ChoiceField(const std::string& label, const std::string& name, std::initializer_list<const char*> values,
                 const std::string& chosen, const char* none = "any")
{
    Html options;
    for (const char* value : values) {
        Html::Attributes attributes{{"value", value}};
        if (chosen == value)
            attributes.emplace_back("selected", "");
        options += Html::Element("option", attributes, *value ? value : none);
    }
    return Html::Element("div", {{"class", "field"}},
                         {Html::Element("label", {{"for", name}}, label),
                          Html::Element("select", {{"id", name}, {"name", name}}, options)});
}

Html ComparisonField(const std::string& chosen)
{
    return ChoiceField("Its comparison", "comparison",
                       {"contains", "equals", "at least", "at most", "at least version", "at most version",
                        "compatible version", "one of", "none of", "any", "yes", "no"},
                       chosen);
}

Html DownloadLinks(const ReportQuery& query)
{
    const auto link = [&](const char* format, const char* label) {
        return ButtonLink(fmt::format("/download?{}&format={}", query.Parameters(), format), label);
    };
    return Html::Element("p", {{"class", "buttons"}},
                         {link("csv", "Download all as CSV"), link("json", "as JSON")});
}

/// Whether the list is of reports that do not meet the condition on a value.
bool HasOutcome(const ReportQuery& query)
{
    return query.condition.IsGiven() && query.condition.outcome != Result::Pass;
}

Html FilterForm(const ReportQuery& query)
{
    Html hidden;
    const auto keep = [&](const char* name, const std::string& value) {
        if (!value.empty())
            hidden += Hidden(name, value);
    };
    if (query.version > 0)
        keep("version", std::to_string(query.version));
    if (query.line > 0)
        keep("line", std::to_string(query.line));
    keep("result", query.result);
    if (HasOutcome(query))
        keep("outcome", std::string(ToString(query.condition.outcome)));
    keep("once", query.isOnce ? "1" : "");
    return Html::Element(
        "form", {{"method", "get"}, {"action", "/reports"}, {"class", "card filter"}},
        {Field("Product", "referrer", query.referrer),
         ChoiceField("Verdict", "verdict", {"", "pass", "fail", "unknown"}, query.verdict),
         Field("From", "from", query.period.From(), "date"),
         Field("Until", "until", query.period.Until(), "date"),
         Field("Session, or its number", "session", query.session), Field("User", "user", query.user),
         Field("Machine", "machine", query.machine),
         Field("Failing line of the product", "failing", query.failing),
         Field("Id of a value", "value", query.condition.IsGiven() ? std::to_string(query.condition.id) : "",
               "text", {{"inputmode", "numeric"}}),
         ComparisonField(query.condition.comparison),
         Field("What it is compared with", "text", query.condition.text),
         ChoiceField("Of several devices", "of", {"", "any"}, query.condition.ofAny ? "any" : "",
                     "the first"),
         hidden, Html::Element("div", {{"class", "field"}}, Button("Show", "primary"))});
}

/// What the form does not show of the filter, with a link to the list without it.
Html Restriction(Database& database, const ReportQuery& query)
{
    Html text;
    if (query.line > 0)
        text = NameOfLine(database, query.referrer, query.version, query.line) + " is " + query.result;
    else if (query.version > 0)
        text = fmt::format("version {} judged them", query.version);
    const auto add = [&](const std::string& more) { text += (text.IsEmpty() ? "" : ", and ") + more; };
    if (HasOutcome(query))
        add(fmt::format("the comparison's result is {}", ToString(query.condition.outcome)));
    if (query.isOnce)
        add("the newest verdict of their session is theirs");
    if (text.IsEmpty())
        return {};
    ReportQuery without = query;
    without.version = without.line = 0;
    without.result.clear();
    without.isOnce = false;
    without.condition.outcome = Result::Pass;
    return Html::Element("p", {{"class", "lead"}},
                         {"Only reports where ", text, ". ", Link(without.Address(), "Show all"), "."});
}

/// Why the list is empty, with a way on.
Html NoReports(const ReportQuery& query, bool isCut)
{
    if (query.period.IsAll() && query.Restrictions().empty())
        return NoReportsYet;
    return Html(isCut ? "No reports so far. " : "No reports here. ") + Link("/reports", "Show all reports");
}

/// The sessions of the list over time, where the counts by day know them.
Html Trend(Database& database, const ReportQuery& query)
{
    if (!SessionTrend::Knows(query))
        return Html::Element(
            "p", {{"class", "basis"}},
            "The counts by day know products, versions, verdicts and lines only, so this list "
            "has no curve.");
    const SessionTrend trend(database, query);
    return trend.Sentence() + trend.Show();
}

}  // namespace

Answer ShowReports(const AdminRequest& request)
{
    const ReportQuery query = ReportQuery::Read(request);
    ReportFilter filter = query.Filter();
    // A page begins at an id and not at a row number, so new reports do not shift it.
    const std::int64_t before = WholeNumber(request.Query("before")),
                       after = WholeNumber(request.Query("after"));
    filter.beforeId = std::max(before, std::int64_t{0});
    filter.afterId = before > 0 ? -1 : after;
    filter.count = PageRows + 1;
    const bool isAscending = filter.afterId >= 0;

    FoundReports found;
    if (!query.failing.empty() && query.problem.empty())
        filter.failing = FindLines(request.database, query.referrer, query.failing);
    if (query.problem.empty())
        found = SearchReports(request.database, query, filter);
    std::vector<ReportLine>& lines = found.lines;
    const bool goesOn = lines.size() > PageRows;
    if (goesOn)
        lines.pop_back();
    const bool isCut = !goesOn && found.reached > 0;
    if (isAscending)
        std::reverse(lines.begin(), lines.end());
    Html pages;
    if (!lines.empty() && (before > 0 || (isAscending && goesOn)))
        pages += Link(fmt::format("{}&after={}", query.Address(), lines.front().id), "← Newer");
    if (!lines.empty() && (isAscending ? after > 0 : goesOn))
        pages += Link(fmt::format("{}&before={}", query.Address(), lines.back().id), "Older →");
    if (isCut)
        pages += Html::Element(
            "span", {},
            {fmt::format("Looked at {} {} {} so far. ",
                         found.looked > 0 ? Grouped(found.looked) + " reports," : std::string("the reports"),
                         isAscending ? "up to" : "down to", found.reached),
             Link(fmt::format("{}&{}={}", query.Address(), isAscending ? "after" : "before", found.reached),
                  "Search on")});
    Html content =
        Html::Element("div", {{"class", "period"}}, query.period.Links("/reports", query.Restrictions()));
    if (request.Query("note") == "deleted")
        content += Notice("good", "The session's reports are deleted.");
    if (request.Query("note") == "left")
        content += Notice("note",
                          "The session has more reports than one deletion takes. Delete again for the rest.");
    if (!query.problem.empty())
        content += Notice("bad", query.problem);
    content += FilterForm(query);
    if (!query.problem.empty())
        return Page(request, "Reports", content);
    content += Restriction(request.database, query);
    if (before <= 0 && !isAscending)  // on the first page
        content += Trend(request.database, query);
    content += ReportsTable(request.database, "Reports, the newest first", lines, NoReports(query, isCut));
    if (!pages.IsEmpty())
        content += Html::Element("nav", {{"class", "pages"}, {"aria-label", "More reports"}}, pages);
    if (!lines.empty())
        content += DownloadLinks(query);
    return Page(request, "Reports", content);
}

}  // namespace kel::server
