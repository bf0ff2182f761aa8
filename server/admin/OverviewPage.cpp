#include "server/admin/OverviewPage.h"

#include "server/admin/Layout.h"
#include "server/admin/ReportsPage.h"
#include "server/admin/Table.h"
#include "server/admin/Texts.h"

namespace kel::server {

namespace {

constexpr int Recent = 1000;
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

Answer OverviewPage::Show(const Visit& visit) const
{
    Table products("Products, with the sessions of the newest " + Grouped(Recent) + " verdicts of each",
                   {{"Product"},
                    {"Version", true},
                    {"Published (UTC)"},
                    {"Pass", true},
                    {"Fail", true},
                    {"Unknown", true},
                    {"Passing", true},
                    {"Requirements"}});
    for (const Product& product : store.Products()) {
        const Totals totals = store.RecentTotals(product.referrer, Recent);
        products.Add(
            {Link(ProductPath(product.referrer), product.referrer),
             product.version > 0 ? Html(std::to_string(product.version)) : Html("–"),
             product.version > 0 ? Moment(product.published) : Html("–"), Grouped(totals.pass),
             Grouped(totals.fail), Grouped(totals.unknown),
             Percentage(totals.pass, totals.pass + totals.fail + totals.unknown),
             Link(ProductPath(product.referrer) + "/requirements", product.hasDraft ? "draft" : "view")});
    }
    ReportFilter filter;
    filter.count = NewestReports;
    Html content = products.Done("No product has requirements yet.");
    if (visit.IsEditor())
        content += NewProductForm();
    content += Html::Element("h2", {}, "Newest reports") +
               ReportsTable("The last ten; all of them are under Reports", store.Reports(filter),
                            "No report has come in yet.");
    return Page(visit, "Overview", content);
}

}  // namespace kel::server
