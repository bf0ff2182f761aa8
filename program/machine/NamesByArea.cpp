#include "program/machine/NamesByArea.h"

#include <algorithm>
#include <string_view>

#include "verdict/Catalogue.h"

namespace kel::program {

NamesByArea GroupByArea(const std::vector<int>& values)
{
    constexpr std::string_view PageArea = "session";  // what a page sets, and what identifies the check
    NamesByArea areas;
    for (const CatalogueValue& value : CatalogueValues) {
        if (std::ranges::count(values, value.id) == 0 || value.Source() == NoSource ||
            value.Area() == PageArea)
            continue;
        auto area = std::ranges::find(areas, value.Area(), &NamesByArea::value_type::first);
        if (area == areas.end())
            area = areas.insert(areas.end(), {value.Area(), {}});
        if (std::ranges::count(area->second, value.Name()) == 0)
            area->second.emplace_back(value.Name());
    }
    return areas;
}

}  // namespace kel::program
