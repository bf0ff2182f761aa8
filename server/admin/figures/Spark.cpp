#include "server/admin/figures/Spark.h"

#include <fmt/format.h>

#include "server/admin/kit/Texts.h"

namespace kel::server {

namespace {

constexpr double SparkWidth = 120, SparkHeight = 24, SparkMargin = 3;

}  // namespace

Html Spark(const std::vector<Counts>& steps, std::size_t count)
{
    std::string points, x, y, first, last;
    for (std::size_t i = 0; i < steps.size() && i < count; ++i) {
        const Counts& step = steps[i];
        if (step.All() == 0)
            continue;
        const double place = (static_cast<double>(i) + 0.5) / static_cast<double>(count);
        const double height = 1.0 - double{1} * step.pass / step.All();
        x = fmt::format("{:.1f}", SparkMargin + (SparkWidth - 2 * SparkMargin) * place);
        y = fmt::format("{:.1f}", SparkMargin + (SparkHeight - 2 * SparkMargin) * height);
        points.append(points.empty() ? "" : " ").append(x).append(",").append(y);
        last = Percentage(step.pass, step.All());
        first = first.empty() ? last : first;
    }
    if (points.empty())
        return {};
    return Html::Element(
        "svg",
        {{"class", "spark"},
         {"role", "img"},
         {"aria-label", fmt::format("The share that passes, from {} to {}", first, last)},
         {"viewBox", fmt::format("0 0 {} {}", SparkWidth, SparkHeight)}},
        Html::Element("polyline", {{"class", "curve"}, {"points", points}}) +
            Html::Element("circle", {{"class", "point"}, {"cx", x}, {"cy", y}, {"r", "2.5"}}));
}

}  // namespace kel::server
