#include "server/admin/ProductList.h"

#include <fmt/format.h>
#include <algorithm>
#include <cstdlib>
#include <map>

#include "server/admin/Layout.h"
#include "server/admin/ReportQuery.h"
#include "server/admin/figures/Spark.h"
#include "server/admin/kit/Table.h"
#include "server/admin/kit/Texts.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

constexpr std::size_t PageProducts = DayCounts::MaxProducts;
constexpr std::int64_t MaxSparkSteps = 30;

struct Order {
    std::string_view name, label;
};

constexpr Order Orders[] = {{"name", "Name"},
                            {"sessions", "Most sessions"},
                            {"passing", "Lowest share that passes"},
                            {"change", "Largest fall"}};

/// Whether a text has all of the words; all in lower case.
bool HasWords(const std::string& text, std::string_view words)
{
    for (; !words.empty(); words.remove_prefix(std::min(words.find(' '), words.size() - 1) + 1)) {
        if (text.find(words.substr(0, words.find(' '))) == std::string::npos)
            return false;
    }
    return true;
}

std::string ChangeText(const std::optional<int>& change)
{
    return !change        ? "–"
           : *change == 0 ? "0"
                          : fmt::format("{}{}", *change > 0 ? "+" : "−", std::abs(*change));
}

Html VersionCell(const Product& product)
{
    const std::string text = product.version == 0 ? "draft"
                             : product.hasDraft   ? fmt::format("version {}, draft", product.version)
                                                  : fmt::format("version {}", product.version);
    return Link(RequirementsPath(product.referrer), text);
}

}  // namespace

std::optional<int> ProductList::Entry::Change() const
{
    if (sessions.All() == 0 || before.All() == 0)
        return std::nullopt;
    return Percent(sessions.pass, sessions.All()) - Percent(before.pass, before.All());
}

ProductList::ProductList(const AdminRequest& request, const Period& period)
    : database(request.database),
      period(period),
      words(request.Query("find")),
      order(request.Query("sort")),
      page(static_cast<std::size_t>(std::max<std::int64_t>(WholeNumber(request.Query("page")), 1) - 1))
{
    for (Product& product : RequirementSets(database).Products())
        entries.push_back({std::move(product), {}, {}, 0});
    Count(period.Range(), &Entry::sessions);
    if (period.HasBefore())
        Count(period.Before().Range(), &Entry::before);
    Find();
    Sort();
    page = std::min(page, entries.empty() ? 0 : (entries.size() - 1) / PageProducts);
}

/// Both lists are ordered by name.
void ProductList::Count(const Days& days, Counts Entry::*own)
{
    auto entry = entries.begin();
    for (const VersionCount& version : DayCounts(database).OfAllProducts(days)) {
        while (entry != entries.end() && entry->product.referrer < version.referrer)
            ++entry;
        if (entry == entries.end() || entry->product.referrer != version.referrer)
            continue;
        if (version.version == entry->product.version)
            (*entry).*own = version.sessions;
        else if (own == &Entry::sessions)
            entry->earlier += version.sessions.All();
    }
}

void ProductList::Find()
{
    const std::string wanted = Lower(Trim(words));
    std::erase_if(entries, [&](const Entry& entry) {
        return !HasWords(Lower(entry.product.referrer + " " + entry.product.title), wanted);
    });
}

/// Products without a figure to sort by come last.
void ProductList::Sort()
{
    const auto sort = [&](auto key) {
        std::stable_sort(entries.begin(), entries.end(),
                         [&](const Entry& left, const Entry& right) { return key(left) < key(right); });
    };
    static constexpr int Last = 1000;
    if (order == "sessions")
        sort([](const Entry& entry) { return -entry.sessions.All(); });
    else if (order == "passing")
        sort([](const Entry& entry) {
            const Counts& sessions = entry.sessions;
            return sessions.All() == 0 ? 2.0 : double{1} * sessions.pass / sessions.All();
        });
    else if (order == "change")
        sort([](const Entry& entry) { return entry.Change().value_or(Last); });
}

std::string ProductList::Address(std::size_t number) const
{
    std::string address = "/?" + period.Query();
    for (const auto& [name, value] : {std::pair{"find", words}, {"sort", order}}) {
        if (!value.empty())
            address.append("&").append(name).append("=").append(UrlEncode(value));
    }
    return number == 0 ? address : fmt::format("{}&page={}", address, number + 1);
}

Html ProductList::SearchForm() const
{
    Html options;
    for (const Order& one : Orders) {
        Html::Attributes attributes{{"value", std::string(one.name)}};
        if (order == one.name)
            attributes.emplace_back("selected", "");
        options += Html::Element("option", attributes, std::string(one.label));
    }
    const Html sort = Html::Element("div", {{"class", "field"}},
                                    {Html::Element("label", {{"for", "sort"}}, "Sort by"),
                                     Html::Element("select", {{"id", "sort"}, {"name", "sort"}}, options)});
    return Html::Element(
        "form", {{"method", "get"}, {"action", "/"}, {"class", "filter"}},
        {period.HiddenFields(), Field("Product: words of its name or title", "find", words, "search"), sort,
         Html::Element("div", {{"class", "field"}}, Button("Show", "plain"))});
}

Html ProductList::Rows() const
{
    const std::size_t first = page * PageProducts, end = std::min(first + PageProducts, entries.size());
    std::vector<std::string> names;
    for (std::size_t i = first; i < end; ++i)
        names.push_back(entries[i].product.referrer);
    Days days = period.Range();
    days.until = std::min(days.until, Now() / DayLength + 1);
    if (days.from == 0)
        days.from = std::min(DayCounts(database).FirstDay().value_or(0), days.until - 1);
    const std::int64_t count = std::max<std::int64_t>(days.until - days.from, 1);
    const std::int64_t stepDays = (count + MaxSparkSteps - 1) / MaxSparkSteps;
    auto steps = DayCounts(database).Steps(names, days, stepDays);
    Table table("Products, with the sessions that their newest version judged " + period.Text() +
                    "; the trend counts all versions",
                {{"Product"},
                 {"Trend"},
                 {"Sessions", true},
                 {"Pass", true},
                 {"Fail", true},
                 {"Unknown", true},
                 {"Passing", true},
                 {"Change", true},
                 {"Earlier versions", true},
                 {"Requirements"}},
                "dense");
    for (std::size_t i = first; i < end; ++i) {
        const Entry& entry = entries[i];
        const Product& product = entry.product;
        const ReportQuery query =
            ReportQuery::SessionsOf(product.referrer, period).OfVersion(product.version);
        const Counts& sessions = entry.sessions;
        std::vector<Html> cells{
            ProductLink(product.referrer, product.title, period.Query()),
            Spark(steps[product.referrer], static_cast<std::size_t>((count + stepDays - 1) / stepDays))};
        if (product.version == 0)
            cells.resize(cells.size() + 7, "–");
        else
            cells.insert(cells.end(),
                         {CountLink(query, sessions.All()), CountLink(query.With("pass"), sessions.pass),
                          CountLink(query.With("fail"), sessions.fail),
                          CountLink(query.With("unknown"), sessions.unknown),
                          Percentage(sessions.pass, sessions.All()), ChangeText(entry.Change()),
                          entry.earlier == 0 ? Html("0")
                                             : Link(ProductPath(product.referrer) + "?" + period.Query(),
                                                    Grouped(entry.earlier))});
        cells.push_back(VersionCell(product));
        table.Add(cells);
    }
    return table.Done(
        words.empty()
            ? Html("No product has requirements yet. An editor writes them here, or the command "
                   "import publishes a folder of files.")
            : Html("No product has these words. ") + Link("/?" + period.Query(), "Show all products"));
}

Html ProductList::Pages() const
{
    if (entries.size() <= PageProducts)
        return {};
    const std::size_t end = (page + 1) * PageProducts;
    Html content;
    if (page > 0)
        content += Link(Address(page - 1), "← Previous");
    content += Html::Element("span", {},
                             fmt::format("{} to {} of {}", page * PageProducts + 1,
                                         std::min(end, entries.size()), entries.size()));
    if (end < entries.size())
        content += Link(Address(page + 1), "Next →");
    return Html::Element("nav", {{"class", "pages"}, {"aria-label", "More products"}}, content);
}

Html ProductList::Show() const
{
    const bool isShort = entries.size() <= 1 && words.empty();
    return (isShort ? Html() : SearchForm()) + Rows() + Pages();
}

}  // namespace kel::server
