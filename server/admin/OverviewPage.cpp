#include "server/admin/Layout.h"
#include "server/admin/Pages.h"
#include "server/admin/ReportsTable.h"
#include "server/admin/figures/Recent.h"
#include "server/admin/kit/Table.h"
#include "server/admin/kit/Texts.h"
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

}  // namespace

Answer ShowOverview(const AdminRequest& request)
{
    const std::vector<Product> products = RequirementSets(request.database).Products();
    const std::vector<Counts> totals = RecentTotals(request.database, products);
    Table table(
        "Products (results by session, from the latest " + Grouped(RecentCount) + " verdicts of each)",
        {{"Product"},
         {"Version", true},
         {"Published (UTC)"},
         {"Pass", true},
         {"Fail", true},
         {"Unknown", true},
         {"Passing", true},
         {"Requirements"}});
    for (std::size_t i = 0; i < products.size(); ++i) {
        const Product& product = products[i];
        std::vector<Html> cells{Link(ProductPath(product.referrer), product.referrer),
                                product.version > 0 ? Html(std::to_string(product.version)) : Html("–"),
                                product.version > 0 ? Moment(product.published) : Html("–")};
        if (i < totals.size()) {
            const auto& [pass, fail, unknown] = totals[i];
            cells.insert(cells.end(), {Grouped(pass), Grouped(fail), Grouped(unknown),
                                       Percentage(pass, pass + fail + unknown)});
        } else {
            cells.insert(cells.end(), 4, "–");
        }
        cells.push_back(Link(RequirementsPath(product.referrer), product.hasDraft ? "draft" : "view"));
        table.Add(cells);
    }
    ReportFilter filter;
    filter.count = NewestReports;
    Html content = table.Done("No product has requirements yet.");
    if (totals.size() < products.size())
        content +=
            Html::Element("p", {},
                          "The other products' figures would take too long here; each product's page has "
                          "its own.");
    if (request.IsEditor())
        content += NewProductForm();
    content += Html::Element("h2", {}, "Newest reports") +
               ReportsTable("The last ten; all of them are under Reports",
                            Reports(request.database).List(filter), "No reports yet.");
    return Page(request, "Overview", content);
}

}  // namespace kel::server
