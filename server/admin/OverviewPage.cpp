#include <fmt/format.h>
#include <map>

#include "server/admin/Layout.h"
#include "server/admin/Pages.h"
#include "server/admin/ReportQuery.h"
#include "server/admin/ReportsTable.h"
#include "server/admin/kit/Table.h"
#include "server/admin/kit/Texts.h"
#include "server/store/DayCounts.h"
#include "server/store/Reports.h"
#include "server/store/RequirementSets.h"

namespace kel::server {

namespace {

constexpr int NewestReports = 10;

Html NewProductForm()
{
    return Html::Element("form", {{"method", "get"}, {"action", "/new"}, {"class", "card filter"}},
                         {Field("New product: the referrer's name", "referrer", "", "text",
                                {{"required", ""},
                                 {"maxlength", "64"},
                                 {"pattern", "[A-Za-z0-9_\\-]+"},
                                 {"title", "Letters, digits, - and _"}}),
                          Html::Element("div", {{"class", "field"}}, Button("Write requirements", "plain"))});
}

/// A product's sessions by its newest version, and how many are by earlier ones.
struct ProductSessions {
    Counts newest;
    int earlier = 0;
};

std::vector<Html> CountCells(const Product& product, const ProductSessions& sessions, const Period& period)
{
    const ReportQuery query = ReportQuery::SessionsOf(product.referrer, period);
    const ReportQuery ofNewest = query.OfVersion(product.version);
    const Counts& newest = sessions.newest;
    return {CountLink(ofNewest, newest.All()),
            CountLink(ofNewest.With("pass"), newest.pass),
            CountLink(ofNewest.With("fail"), newest.fail),
            CountLink(ofNewest.With("unknown"), newest.unknown),
            Percentage(newest.pass, newest.All()),
            sessions.earlier == 0
                ? Html("0")
                : Link(ProductPath(product.referrer) + "?" + period.Query(), Grouped(sessions.earlier))};
}

Html ProductTable(Database& database, const Period& period)
{
    const std::vector<Product> products = RequirementSets(database).Products();
    std::map<std::string, int> newest;
    for (const Product& product : products)
        newest[product.referrer] = product.version;
    std::map<std::string, ProductSessions> sessions;
    for (const VersionCount& version : DayCounts(database).OfAllProducts(period.Range())) {
        ProductSessions& of = sessions[version.referrer];
        if (version.version == newest[version.referrer])
            of.newest = version.sessions;
        else
            of.earlier += version.sessions.All();
    }
    Table table("Products, with the sessions that their newest version judged " + period.Text(),
                {{"Product"},
                 {"Version", true},
                 {"Published (UTC)"},
                 {"Sessions", true},
                 {"Pass", true},
                 {"Fail", true},
                 {"Unknown", true},
                 {"Passing", true},
                 {"By earlier versions", true},
                 {"Requirements"}});
    for (const Product& product : products) {
        const bool isPublished = product.version > 0;
        std::vector<Html> cells{Link(ProductPath(product.referrer) + "?" + period.Query(), product.referrer),
                                isPublished ? Html(std::to_string(product.version)) : Html("–"),
                                isPublished ? Moment(product.published) : Html("–")};
        const auto counts =
            isPublished ? CountCells(product, sessions[product.referrer], period) : std::vector<Html>(6, "–");
        cells.insert(cells.end(), counts.begin(), counts.end());
        cells.push_back(Link(RequirementsPath(product.referrer), product.hasDraft ? "draft" : "view"));
        table.Add(cells);
    }
    return table.Done(
        "No product has requirements yet. An editor writes them here, or the command import publishes a "
        "folder of files.");
}

/// How many reports arrived, with those that belong to no product.
Html Arrivals(Database& database, const Period& period)
{
    std::int64_t all = 0, others = 0;
    for (const auto& [referrer, count] : DayCounts(database).Reports(period.Range())) {
        all += count;
        others += referrer.empty() ? count : 0;
    }
    std::string text = fmt::format("Reports {}: {}", period.Text(), Grouped(all));
    if (others > 0)
        text += fmt::format(", {} of them for no product that has requirements", Grouped(others));
    return Html::Element("p", {{"class", "lead"}}, text + ".");
}

}  // namespace

Answer ShowOverview(const AdminRequest& request)
{
    const Period period = Period::Read(request, Period::Usual);
    Html content =
        period.Choice("/") + Arrivals(request.database, period) + ProductTable(request.database, period);
    if (request.IsEditor())
        content += NewProductForm();
    ReportFilter filter;
    filter.count = NewestReports;
    content +=
        Html::Element("h2", {}, "Newest reports") +
        ReportsTable(
            "The last ten; all of them are under Reports", Reports(request.database).List(filter),
            "No reports yet. They appear once a page with the control asks this service for an analysis.");
    return Page(request, "Overview", content);
}

}  // namespace kel::server
