#pragma once

#include <algorithm>
#include <functional>
#include <iterator>
#include <utility>
#include <vector>

namespace kel {

/// Sorts a short list of devices; equal ones keep their order. It takes a tenth of the code that the standard
/// library's sort takes for each type, and the square of the number of items in time.
template <typename Item, typename Less = std::ranges::less, typename Projection = std::identity>
void SortStably(std::vector<Item>& items, Less less = {}, Projection projection = {})
{
    for (auto place = items.begin(); place != items.end(); ++place) {
        const auto target =
            std::ranges::upper_bound(items.begin(), place, std::invoke(projection, *place), less, projection);
        if (target == place)
            continue;
        Item moved = std::move(*place);
        std::move_backward(target, place, std::next(place));
        *target = std::move(moved);
    }
}

}  // namespace kel
