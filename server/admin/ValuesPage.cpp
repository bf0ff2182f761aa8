#include <fmt/format.h>
#include <algorithm>
#include <utility>
#include <vector>

#include "server/admin/Layout.h"
#include "server/admin/Pages.h"
#include "server/admin/kit/Table.h"
#include "server/admin/kit/Texts.h"
#include "verdict/Catalogue.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

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

bool Matches(const CatalogueValue& value, const std::string& words)
{
    const std::string text =
        Lower(fmt::format("{} {} {} {}", value.id, value.Area(), value.Detector(), value.Name()));
    std::string_view left = words;
    while (!left.empty()) {
        const std::string_view word = left.substr(0, left.find(' '));
        if (text.find(word) == std::string::npos)
            return false;
        left.remove_prefix(std::min(word.size() + 1, left.size()));
    }
    return true;
}

/// The values that match, by area, in the catalogue's order. Those that are always empty are left out.
std::vector<std::pair<std::string, std::vector<const CatalogueValue*>>> FindAreas(const std::string& words)
{
    std::vector<std::pair<std::string, std::vector<const CatalogueValue*>>> areas;
    for (const CatalogueValue& value : CatalogueValues) {
        if (value.Source() == NoSource || !Matches(value, words))
            continue;
        auto area = std::find_if(areas.begin(), areas.end(),
                                 [&](const auto& one) { return one.first == value.Area(); });
        if (area == areas.end())
            area = areas.insert(areas.end(), {value.Area(), {}});
        area->second.push_back(&value);
    }
    return areas;
}

}  // namespace

Answer ShowValues(const AdminRequest& request)
{
    const std::string words = request.Query("find");
    const std::string self = "/values" + (words.empty() ? "" : "?find=" + UrlEncode(words));
    Html list, tables;
    for (const auto& [area, values] : FindAreas(Lower(Trim(words)))) {
        const std::string anchor = "area-" + std::to_string(values.front()->id);
        list += Html::Element("li", {}, Html::Element("a", {{"href", self + "#" + anchor}}, area));
        Table table(fmt::format("Values of the area {}", area), {{"Id"}, {"What"}, {"Remarks"}});
        for (const CatalogueValue* value : values)
            table.Add({std::to_string(value->id), std::string(value->Detector()) + ": " + value->Name(),
                       Remarks(*value)});
        tables += Html::Element("h2", {{"id", anchor}}, area) + table.Done("");
    }
    const Html found =
        tables.IsEmpty()
            ? Html::Element("p", {{"class", "empty"}},
                            {"No value has these words. ", Link("/values", "Show all values"), "."})
            : Html::Element("nav", {{"class", "areas"}, {"aria-label", "Areas"}},
                            Html::Element("ul", {}, list)) +
                  tables;
    return Page(
        request, "Values",
        Html::Element("p", {{"class", "lead"}},
                      "What requirements can ask for, by the number that stands in them as \"id\".") +
            Html::Element("form", {{"method", "get"}, {"action", "/values"}, {"class", "card filter"}},
                          {Field("Words of the name or the area, or an id", "find", words, "search"),
                           Html::Element("div", {{"class", "field"}}, Button("Find", "primary"))}) +
            found);
}

}  // namespace kel::server
