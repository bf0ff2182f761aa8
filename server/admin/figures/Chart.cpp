#include "server/admin/figures/Chart.h"

#include <algorithm>

#include "server/admin/kit/Table.h"
#include "server/admin/kit/Texts.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

// In units of the picture, which is scaled to the available width.
constexpr std::size_t MaxBarLabelBytes = 45;  // bytes; the table has the whole label
constexpr int Width = 320, RowHeight = 34, TextBase = 13, BarTop = 18, BarHeight = 10;

std::string Number(int number)
{
    return std::to_string(number);
}

}  // namespace

Html Chart(const std::string& title, const std::vector<Distribution::Bar>& bars)
{
    int maxCount = 1, all = 0;
    for (const Distribution::Bar& bar : bars) {
        maxCount = std::max(maxCount, bar.count);
        all += bar.count;
    }
    Html picture = Html::Element("title", {}, title);
    Table table("Figures", {{"Value"}, {"Sessions", true}, {"Share", true}});
    int top = 0;
    for (const Distribution::Bar& bar : bars) {
        const int width = std::max(2, bar.count * Width / maxCount);
        picture += Html::Element("text", {{"x", "0"}, {"y", Number(top + TextBase)}},
                                 Shortened(bar.label, MaxBarLabelBytes));
        picture += Html::Element("rect", {{"class", bar.isRest ? "rest" : "bar"},
                                          {"x", "0"},
                                          {"y", Number(top + BarTop)},
                                          {"width", Number(width)},
                                          {"height", Number(BarHeight)},
                                          {"rx", "2"}});
        table.Add({Html::Stored(bar.label), Grouped(bar.count), Percentage(bar.count, all)});
        top += RowHeight;
    }
    return Html::Element(
        "figure", {},
        {Html::Element("figcaption", {}, title),
         bars.empty() ? Html()
                      : Html::Element(
                            "svg", {{"role", "img"}, {"viewBox", "0 0 " + Number(Width) + " " + Number(top)}},
                            picture),
         table.Done("Nothing to count.")});
}

}  // namespace kel::server
