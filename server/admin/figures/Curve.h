#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "server/admin/kit/Html.h"
#include "server/store/DayCounts.h"

namespace kel::server {

/// What became of sessions over time: a curve of the share that has a result above bars of their number, by
/// day, or by week where there are many days, with the publications of requirements.
class Curve {
public:
    /// What the curve is of.
    struct Subject {
        Result shown = Result::Pass;
        std::string share;  // those with that result: "sessions that pass"
        std::string scope;  // "of all versions"
    };
    struct Publication {
        std::int64_t day = 0;
        std::string label;
    };
    /// The address of the reports of the days from the first until, and without, the second, with that total
    /// ("pass", "fail", "unknown"; empty: any).
    using Address = std::function<std::string(std::int64_t from, std::int64_t until, std::string_view total)>;

    /// Days outside of `range` are left out; where it is open, it ends with the counted days.
    Curve(const std::vector<DayCount>& days, const Days& range, Subject subject);

    /// The picture as SVG, whose bars are links, and the figures as a table below it. The publications are in
    /// the order of their days.
    Html Show(const std::vector<Publication>& publications, const Address& address) const;

private:
    struct Step {
        std::int64_t from = 0, until = 0;
        Counts sessions;
    };

    std::string Name(const Step& step) const;
    std::string Share(const Step& step) const;
    double Place(std::int64_t day) const;
    Html Bars(const Address& address) const;
    Html Line() const;
    Html Marks(const std::vector<Publication>& publications) const;
    Html Figures(const Address& address) const;

    Subject subject;
    int stepDays = 1;
    std::vector<Step> steps;
};

}  // namespace kel::server
