#include "server/admin/figures/Curve.h"

#include <fmt/format.h>
#include <algorithm>
#include <optional>

#include "server/admin/kit/Table.h"
#include "server/admin/kit/Texts.h"

namespace kel::server {

namespace {

// In units of the picture, which is scaled to the available width.
constexpr int PictureWidth = 600, PictureHeight = 208;
constexpr int Left = 76, Right = 8, Top = 26, CurveHeight = 96, BarsTop = 132, BarsHeight = 44,
              TextLine = 200;
constexpr int MinLabelWidth = 40, CharacterWidth = 11;  // of the label of a publication, on a narrow page
constexpr int MaxDays = 31, MaxWeeks = 104;             // that have a step each

std::string Units(double number)
{
    return fmt::format("{:.1f}", number);
}

Html Text(double x, int y, const std::string& anchor, const std::string& text)
{
    return Html::Element("text", {{"x", Units(x)}, {"y", std::to_string(y)}, {"text-anchor", anchor}}, text);
}

Html VerticalLine(const std::string& kind, double x, int from, int until)
{
    return Html::Element("line", {{"class", kind},
                                  {"x1", Units(x)},
                                  {"x2", Units(x)},
                                  {"y1", std::to_string(from)},
                                  {"y2", std::to_string(until)}});
}

}  // namespace

Curve::Curve(const std::vector<DayCount>& days, const Days& range, Subject subject)
    : subject(std::move(subject))
{
    if (days.empty())
        return;
    const bool isOpen = range.until == Days().until;
    const std::int64_t first = range.from == 0 ? days.front().day : range.from;
    const std::int64_t end = isOpen ? days.back().day + 1 : range.until;
    const std::int64_t count = end - first;
    stepDays = count <= MaxDays ? 1 : count <= std::int64_t{MaxWeeks} * 7 ? 7 : 28;
    // The last step ends with the last day, so that it is not shorter than the others.
    for (std::int64_t until = end; until > first; until -= stepDays)
        steps.push_back({std::max(until - stepDays, first), until, {}});
    std::reverse(steps.begin(), steps.end());
    for (const DayCount& day : days) {
        const auto step = std::find_if(steps.begin(), steps.end(), [&](const Step& one) {
            return day.day >= one.from && day.day < one.until;
        });
        if (step != steps.end())
            step->sessions += day.sessions;
    }
}

std::string Curve::Name(const Step& step) const
{
    const std::string first = DayText(step.from * DayLength);
    return step.until - step.from == 1
               ? first
               : fmt::format("{} to {}", first, DayText((step.until - 1) * DayLength));
}

std::string Curve::Share(const Step& step) const
{
    return Percentage(step.sessions[subject.shown], step.sessions.All());
}

double Curve::Place(std::int64_t day) const
{
    const auto count = static_cast<double>(steps.back().until - steps.front().from);
    return Left + (PictureWidth - Left - Right) * static_cast<double>(day - steps.front().from) / count;
}

Html Curve::Bars(const Address& address) const
{
    int maxCount = 1;
    for (const Step& step : steps)
        maxCount = std::max(maxCount, step.sessions.All());
    Html bars = Text(Left - 6, BarsTop + 16, "end", Grouped(maxCount));
    for (const Step& step : steps) {
        const int count = step.sessions.All();
        if (count == 0)
            continue;
        const double left = Place(step.from), width = std::max(Place(step.until) - left - 1, 1.0);
        const double height = std::max(double{BarsHeight} * count / maxCount, 1.0);
        const Html bar = Html::Element("rect", {{"class", "bar"},
                                                {"x", Units(left)},
                                                {"y", Units(BarsTop + BarsHeight - height)},
                                                {"width", Units(width)},
                                                {"height", Units(height)}});
        const Html title = Html::Element("title", {},
                                         fmt::format("{}: {} sessions, {} {}", Name(step), Grouped(count),
                                                     Share(step), ToString(subject.shown)));
        // The table has the same links for the keyboard.
        bars += Html::Element("a", {{"href", address(step.from, step.until, "")}, {"tabindex", "-1"}},
                              {title, bar});
    }
    return bars;
}

Html Curve::Line() const
{
    Html line;
    for (const auto& [part, label] : {std::pair{1.0, "100 %"}, {0.5, "50 %"}, {0.0, "0 %"}}) {
        const double y = Top + CurveHeight * (1 - part);
        line += Html::Element("line", {{"class", "grid"},
                                       {"x1", std::to_string(Left)},
                                       {"x2", std::to_string(PictureWidth - Right)},
                                       {"y1", Units(y)},
                                       {"y2", Units(y)}}) +
                Text(Left - 6, static_cast<int>(y) + 4, "end", label);
    }
    std::string points;
    Html dots;
    for (const Step& step : steps) {
        if (step.sessions.All() == 0)
            continue;
        const double part = double{1} * step.sessions[subject.shown] / step.sessions.All();
        const std::string x = Units((Place(step.from) + Place(step.until)) / 2),
                          y = Units(Top + CurveHeight * (1.0 - part));
        points += (points.empty() ? "" : " ") + x + "," + y;
        dots += Html::Element("circle", {{"class", "point"}, {"cx", x}, {"cy", y}, {"r", "2.5"}});
    }
    return line + Html::Element("polyline", {{"class", "curve"}, {"points", points}}) + dots;
}

Html Curve::Marks(const std::vector<Publication>& publications) const
{
    Html marks;
    double free = 0;  // from there on no label has been written
    for (const auto& [day, label] : publications) {
        if (day < steps.front().from || day >= steps.back().until)
            continue;
        const double x = Place(day);
        marks += VerticalLine("mark", x, Top - 4, BarsTop + BarsHeight);
        const int width = std::max(MinLabelWidth, CharacterWidth * static_cast<int>(label.size()));
        const bool isAtEnd = x > PictureWidth - width;
        const double left = isAtEnd ? x - width : x;
        if (left < free)
            continue;
        free = left + width;
        marks += Text(x, Top - 7, isAtEnd ? "end" : "start", label);
    }
    return marks;
}

Html Curve::Figures(const Address& address) const
{
    const std::string kind = stepDays == 1 ? "day" : stepDays == 7 ? "week" : "four weeks";
    const std::string share = subject.shown == Result::Pass   ? "Passing"
                              : subject.shown == Result::Fail ? "Failing"
                                                              : "Share unknown";
    Table table(fmt::format("Sessions by {}, {}, the newest first", kind, subject.scope), {{"Days (UTC)"},
                                                                                           {"Sessions", true},
                                                                                           {"Pass", true},
                                                                                           {"Fail", true},
                                                                                           {"Unknown", true},
                                                                                           {share, true}});
    for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
        const int count = step->sessions.All();
        if (count == 0)
            continue;
        const auto link = [&](const std::string& text, std::string_view total) {
            return Html::Element("a", {{"href", address(step->from, step->until, total)}}, text);
        };
        const auto number = [&](int part, std::string_view total) {
            return part == 0 ? Html(Grouped(0)) : link(Grouped(part), total);
        };
        table.Add({link(Name(*step), ""), number(count, ""), number(step->sessions.pass, "pass"),
                   number(step->sessions.fail, "fail"), number(step->sessions.unknown, "unknown"),
                   Share(*step)});
    }
    return Html::Element("details", {},
                         {Html::Element("summary", {}, "Figures by " + kind), table.Done("None.")});
}

Html Curve::Show(const std::vector<Publication>& publications, const Address& address) const
{
    if (steps.empty())
        return {};
    const Html ends =
        Text(Left, TextLine, "start", DayText(steps.front().from * DayLength)) +
        Text(PictureWidth - Right, TextLine, "end", DayText((steps.back().until - 1) * DayLength));
    const std::string title =
        fmt::format("The share of {}, above their number, {}", subject.share, subject.scope);
    return Html::Element("figure", {{"class", "curve"}},
                         {Html::Element("figcaption", {}, title),
                          Html::Element("svg",
                                        {{"role", "group"},
                                         {"aria-label", title},
                                         {"viewBox", fmt::format("0 0 {} {}", PictureWidth, PictureHeight)}},
                                        {Bars(address), Line(), Marks(publications), ends}),
                          Figures(address)});
}

}  // namespace kel::server
