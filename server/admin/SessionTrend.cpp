#include "server/admin/SessionTrend.h"

#include <fmt/format.h>

#include "server/admin/FailingLine.h"
#include "server/admin/kit/Texts.h"

namespace kel::server {

namespace {

constexpr std::size_t MaxLabel = 16;  // characters of a publication's

/// What sessions with the result do: "pass", "leave line 8 of version 1 unknown".
template <typename Text>
Text Predicate(Result result, const Text& line)
{
    return result == Result::Pass   ? Text("pass ") + line
           : result == Result::Fail ? Text("fail ") + line
                                    : Text("leave ") + line + " unknown";
}

/// The same for the total.
const char* Predicate(Result result)
{
    return result == Result::Pass ? "pass" : result == Result::Fail ? "fail" : "are unknown";
}

}  // namespace

bool SessionTrend::Knows(const ReportQuery& query)
{
    return query.session.empty() && query.user.empty() && query.machine.empty() && query.failing.empty() &&
           !query.condition.IsGiven() && (query.line == 0 || query.verdict.empty());
}

SessionTrend::SessionTrend(Database& database, const ReportQuery& query)
    : database(database),
      query(query),
      shown(ParseResult(query.line > 0 ? query.result : query.verdict).value_or(Result::Pass)),
      filter{query.referrer, 0, query.line}
{
    constexpr std::int64_t NoSet = -1;
    if (!query.referrer.empty())
        published = RequirementSets(database).Versions(query.referrer);
    if (query.version > 0)
        filter.set = NoSet;
    for (const PublishedSet& set : published) {
        if (set.version == query.version)
            filter.set = set.id;
    }
    days = Count(query.period);
}

std::vector<DayCount> SessionTrend::Count(const Period& period) const
{
    return DayCounts(database).ByDay(filter, period.Range());
}

/// The list of the sessions of a period with that result; empty: of all.
ReportQuery SessionTrend::Sessions(const Period& period, std::string_view result) const
{
    ReportQuery sessions = query;
    sessions.isOnce = true;
    sessions.period = period;
    if (query.line == 0)
        sessions.verdict = result;
    else
        sessions.result = result;
    if (result.empty())
        sessions.line = 0;
    return sessions;
}

Html SessionTrend::Sentence() const
{
    const Counts now = SumSessions(days);
    if (now.All() == 0)
        return Html::Element("p", {{"class", "basis"}},
                             fmt::format("No session was judged {}.", query.period.Text()));
    const auto share = [&](const Counts& counts, const Period& period) {
        return Html(Percentage(counts[shown], counts.All()) + " of ") +
               CountLink(Sessions(period, ""), counts.All());
    };
    Html before;
    if (query.period.HasBefore()) {
        const Counts old = SumSessions(Count(query.period.Before()));
        before = old.All() == 0 ? Html(fmt::format("; {} had none", query.period.BeforeText()))
                                : Html(fmt::format("; {} it was ", query.period.BeforeText())) +
                                      share(old, query.period.Before());
    }
    const std::string judges =
        query.line == 0 && query.version > 0 ? fmt::format(", judged by version {},", query.version) : "";
    return Html::Element(
        "p", {{"class", "answer"}},
        {share(now, query.period), fmt::format(" sessions {}{} ", query.period.Text(), judges),
         query.line == 0 ? Html(Predicate(shown))
                         : Predicate(shown, NameOfLine(database, query.referrer, query.version, query.line)),
         before, "."});
}

/// The publications to mark: those of the product, or of all.
std::vector<Curve::Publication> SessionTrend::Publications() const
{
    std::vector<Curve::Publication> publications;
    for (auto set = published.rbegin(); set != published.rend(); ++set)
        publications.push_back({set->published / DayLength, fmt::format("v{}", set->version)});
    if (!query.referrer.empty())
        return publications;
    for (const PublishedDay& day : RequirementSets(database).PublishedDays()) {
        const std::string own = fmt::format("{} v{}", day.referrer, day.version);
        publications.push_back({day.day, day.count == 1 && own.size() <= MaxLabel
                                             ? own
                                             : fmt::format("{} published", Grouped(day.count))});
    }
    return publications;
}

Html SessionTrend::Show() const
{
    const std::string scope =
        query.version == 0 ? "of all versions" : fmt::format("of version {}", query.version);
    const std::string who = query.referrer.empty() ? "sessions of all products that " : "sessions that ";
    // Short, as it is a heading.
    const std::string done =
        query.line == 0 ? Predicate(shown)
                        : Predicate(shown, fmt::format("line {} of version {}", query.line, query.version));
    const Curve curve(days, query.period.Range(), {shown, who + done, scope});
    return curve.Show(Publications(), [&](std::int64_t from, std::int64_t until, std::string_view total) {
        return Sessions(Period::Between(from, until), total).Address();
    });
}

}  // namespace kel::server
