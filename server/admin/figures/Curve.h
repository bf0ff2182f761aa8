#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "server/admin/kit/Html.h"
#include "server/store/DayCounts.h"
#include "server/store/RequirementSets.h"

namespace kel::server {

/// What became of a product's sessions over time: a curve of the share that passes above bars of their
/// number, by day, or by week where there are many days, with the publications of its requirements.
class Curve {
public:
    /// The address of the reports of the days from the first until, and without, the second, with that total
    /// ("pass", "fail", "unknown"; empty: any).
    using Address = std::function<std::string(std::int64_t from, std::int64_t until, std::string_view total)>;

    /// Days outside of `range` are left out; where it is open, it ends with the counted days.
    Curve(const std::vector<DayCount>& days, const Days& range);

    /// The picture as SVG, whose bars are links, and the figures as a table below it.
    Html Show(const std::vector<PublishedSet>& publications, const Address& address) const;

private:
    struct Step {
        std::int64_t from = 0, until = 0;
        Counts sessions;
    };

    std::string Name(const Step& step) const;
    double Place(std::int64_t day) const;
    Html Bars(const Address& address) const;
    Html Line() const;
    Html Marks(const std::vector<PublishedSet>& publications) const;
    Html Figures(const Address& address) const;

    int stepDays = 1;
    std::vector<Step> steps;
};

}  // namespace kel::server
