#include <fmt/format.h>
#include <algorithm>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "server/admin/Layout.h"
#include "server/admin/Pages.h"
#include "server/admin/ReportQuery.h"
#include "server/admin/ValueSearch.h"
#include "server/admin/figures/Recent.h"
#include "server/admin/kit/Table.h"
#include "server/admin/kit/Texts.h"
#include "verdict/Catalogue.h"
#include "verdict/ValueKinds.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

constexpr std::size_t MaxOpen = 50;  // found values; the areas of more are folded

/// What an author should know of a value, in sentences.
std::string Remarks(const CatalogueValue& value)
{
    std::string remarks = value.Caution();
    const auto add = [&](const char* sentence) {
        remarks += (remarks.empty() ? "" : " ") + std::string(sentence);
    };
    if (value.hasIndexes)
        add("One for each device or installed version.");
    if (value.isGated)
        add("Read only when requirements ask for it.");
    if (value.soldAs != SoldAs::Nothing)
        add("\"at least\" compares the size that it is sold as.");
    return remarks;
}

using Area = std::pair<std::string, std::vector<const CatalogueValue*>>;

/// The values that match, by area, in the catalogue's order.
std::vector<Area> FindAreas(const std::string& words)
{
    std::vector<Area> areas;
    for (const CatalogueValue* value : FindValues(words)) {
        auto area = std::find_if(areas.begin(), areas.end(),
                                 [&](const Area& one) { return one.first == value->Area(); });
        if (area == areas.end())
            area = areas.insert(areas.end(), {value->Area(), {}});
        area->second.push_back(value);
    }
    return areas;
}

/// How many of the newest reports, of all products, have each value.
struct Reporting {
    RecentSessions sessions;
    std::map<int, int> counts;  // by id

    explicit Reporting(Database& database)
    {
        sessions = ForEachRecentReport(database, {}, [this](const Report& report) {
            std::set<std::string_view> ids;
            for (const auto& [place, text] : report.All()) {
                if (!Trim(text).empty() && ids.insert(place.first).second)
                    ++counts[static_cast<int>(WholeNumber(place.first))];
            }
        });
    }

    /// What the column of the numbers says.
    std::string Explanation() const
    {
        if (sessions.count == 0)
            return "Once there are reports, the page says how many have each value.";
        return fmt::format(
            "\"Reports\" says how many have the value, of {}, and leads to all reports that "
            "have it. A report has only what the requirements of its product ask for.",
            sessions.Text());
    }

    /// The number for a value, which leads to all reports that have it.
    Html Link(int id) const
    {
        if (sessions.count == 0)
            return "–";
        const auto found = counts.find(id);
        return CountLink(ReportQuery().WithValue({id, "any", "", true}),
                         found == counts.end() ? 0 : found->second);
    }
};

std::string JoinComparisons(const CatalogueValue& value)
{
    std::string names;
    for (const std::string_view name : FittingComparisons(KindOf(value).type))
        names.append(names.empty() ? "" : ", ").append(name);
    return names;
}

/// "amount of bytes: bytes that the system can use"
std::string TypeAndForm(const CatalogueValue& value)
{
    const ValueKind& kind = KindOf(value);
    std::string text(ToString(kind.type));
    if (kind.form[0] != 0)
        text.append(": ").append(kind.form);
    return text;
}

}  // namespace

Answer ShowValues(const AdminRequest& request)
{
    const std::string words = request.Query("find");
    const Reporting reporting(request.database);
    const std::vector<Area> areas = FindAreas(words);
    std::size_t count = 0;
    for (const auto& [area, values] : areas)
        count += values.size();
    Html found;
    for (const auto& [area, values] : areas) {
        Table table(fmt::format("Values of the area {}", area),
                    {{"Id"}, {"What"}, {"Type and form"}, {"Example"}, {"Comparisons"}, {"Reports", true}});
        for (const CatalogueValue* value : values) {
            Html what = std::string(value->Detector()) + ": " + value->Name();
            if (const std::string remarks = Remarks(*value); !remarks.empty())
                what += Html::Element("div", {{"class", "kind"}}, remarks);
            table.Add({std::to_string(value->id), what, TypeAndForm(*value), KindOf(*value).example,
                       JoinComparisons(*value), reporting.Link(value->id)});
        }
        Html::Attributes attributes{{"class", "area"}};
        if (count <= MaxOpen)
            attributes.emplace_back("open", "");
        const std::string number = fmt::format(" {} value{}", values.size(), values.size() == 1 ? "" : "s");
        found += Html::Element(
            "details", attributes,
            {Html::Element("summary", {}, {Html::Element("h2", {}, area), number}), table.Done("")});
    }
    if (areas.empty())
        found = Html::Element("p", {{"class", "empty"}},
                              {"No value has these words. ", Link("/values", "Show all values"), "."});
    return Page(
        request, "Values",
        Html::Element("p", {{"class", "lead"}},
                      "What requirements can ask for, by the number that stands in them as \"id\". " +
                          reporting.Explanation()) +
            Html::Element(
                "form", {{"method", "get"}, {"action", "/values"}, {"class", "card filter"}},
                {Field("Words of the name, area, type, unit or example, or an id", "find", words, "search"),
                 Html::Element("div", {{"class", "field"}}, Button("Find", "primary"))}) +
            found);
}

}  // namespace kel::server
