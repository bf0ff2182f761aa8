#include "server/admin/Period.h"

#include <fmt/format.h>
#include <algorithm>
#include <iterator>

#include "server/admin/Layout.h"
#include "server/admin/kit/Texts.h"

namespace kel::server {

namespace {

struct UsualPeriod {
    std::string_view name, label, text;
    int days;  // 0: all
};

constexpr UsualPeriod UsualPeriods[] = {{"today", "Today", "today", 1},
                                        {"7d", "7 days", "in the last 7 days", 7},
                                        {"30d", "30 days", "in the last 30 days", 30},
                                        {"90d", "90 days", "in the last 90 days", 90},
                                        {Period::All, "All", "so far", 0}};

const UsualPeriod* FindUsual(std::string_view name)
{
    const auto* found = std::find_if(std::begin(UsualPeriods), std::end(UsualPeriods),
                                     [&](const UsualPeriod& usual) { return usual.name == name; });
    return found == std::end(UsualPeriods) ? nullptr : found;
}

}  // namespace

Period Period::Read(const AdminRequest& request, std::string_view usual)
{
    const auto from = ParseDay(request.Query("from")), until = ParseDay(request.Query("until"));
    Period period;
    if (from || until) {
        period.days.from = from.value_or(0) / DayLength;
        period.isOpen = !until;
        if (until)
            period.days.until = *until / DayLength + 1;
        return period;
    }
    const std::string named = request.Query("period");
    return Of(FindUsual(named) ? named : usual);
}

Period Period::Of(std::string_view name)
{
    const UsualPeriod& usual = *FindUsual(name);
    Period period;
    period.name = usual.name;
    period.isOpen = usual.days == 0;
    if (usual.days > 0) {
        period.days.until = Now() / DayLength + 1;
        period.days.from = period.days.until - usual.days;
    }
    return period;
}

std::string Period::Problem(const AdminRequest& request)
{
    for (const char* name : {"from", "until"}) {
        const std::string day = request.Query(name);
        if (!day.empty() && !ParseDay(day))
            return fmt::format("'{}' has to be a day such as 2026-03-01.", name);
    }
    const std::string named = request.Query("period");
    return named.empty() || FindUsual(named) ? "" : "'period' has to be today, 7d, 30d, 90d or all.";
}

Period Period::Between(std::int64_t from, std::int64_t until)
{
    Period period;
    period.days = {std::max(from, std::int64_t{0}), until};
    return period;
}

std::string Period::Text() const
{
    if (const UsualPeriod* usual = FindUsual(name))
        return std::string(usual->text);
    if (days.until - days.from == 1)
        return "on " + From();
    if (isOpen)
        return "since " + From();
    return days.from == 0 ? "until " + Until() : fmt::format("from {} to {}", From(), Until());
}

std::string Period::BeforeText() const
{
    const std::int64_t count = days.until - days.from;
    return count == 1 ? "the day before" : fmt::format("the {} days before", Grouped(count));
}

std::string Period::Query() const
{
    if (!name.empty())
        return "period=" + name;
    const std::string until = Until();
    return days.from == 0  ? "until=" + until
           : until.empty() ? "from=" + From()
                           : fmt::format("from={}&until={}", From(), until);
}

Html Period::HiddenFields() const
{
    Html fields;
    for (const auto& [field, value] : {std::pair{"period", name},
                                       {"from", name.empty() ? From() : ""},
                                       {"until", name.empty() ? Until() : ""}}) {
        if (!value.empty())
            fields += Hidden(field, value);
    }
    return fields;
}

std::string Period::From() const
{
    return days.from == 0 ? std::string() : DayText(days.from * DayLength);
}

std::string Period::Until() const
{
    return isOpen ? std::string() : DayText((days.until - 1) * DayLength);
}

Html Period::Links(const std::string& path, const std::string& others) const
{
    Html list;
    for (const UsualPeriod& usual : UsualPeriods) {
        Html::Attributes attributes{{"href", fmt::format("{}?period={}{}", path, usual.name, others)}};
        if (name == usual.name)
            attributes.emplace_back("aria-current", "true");
        list += Html::Element("li", {}, Html::Element("a", attributes, std::string(usual.label)));
    }
    return Html::Element("nav", {{"aria-label", "Period"}}, Html::Element("ul", {}, list));
}

Html Period::Choice(const std::string& path) const
{
    return Html::Element(
        "div", {{"class", "period"}},
        {Links(path), Html::Element("form", {{"method", "get"}, {"action", path}},
                                    {Field("From", "from", From(), "date"),
                                     Field("Until", "until", Until(), "date"), Button("Show", "plain")})});
}

}  // namespace kel::server
