#include "server/admin/ValueChart.h"

#include <fmt/format.h>
#include <algorithm>

#include "server/admin/Layout.h"
#include "server/admin/ValueNames.h"
#include "server/admin/kit/Table.h"
#include "server/admin/kit/Texts.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

constexpr std::size_t MaxTableRows = 100;
constexpr std::size_t MaxShownValueBytes = 300;

/// The list of the reports that have the value; empty when there are none, or a text is too long for it.
std::string ValueAddress(const ReportQuery& query, const ValueSample& sample, const std::string& comparison,
                         const ValueSample::Step& step)
{
    if (step.count == 0 || step.label.size() > ValueCondition::MaxLinkedBytes)
        return {};
    return query.WithValue({sample.Id(), comparison, step.label, sample.IsOfAny()}).Address();
}

Html ValueLink(const ReportQuery& query, const ValueSample& sample, const std::string& comparison,
               const ValueSample::Step& step)
{
    const std::string address = ValueAddress(query, sample, comparison, step);
    return address.empty() ? Html(Grouped(step.count)) : Link(address, Grouped(step.count));
}

/// A bar, without a text.
Html Bar(const ValueSample& sample, const ValueSample::Step& step)
{
    const int percent = Percent(step.count, sample.Reported());
    return Html::Element("svg",
                         {{"class", "share"},
                          {"aria-hidden", "true"},
                          {"viewBox", "0 0 100 10"},
                          {"preserveAspectRatio", "none"}},
                         Html::Element("rect", {{"class", step.isAsked ? "asked" : "bar"},
                                                {"width", std::to_string(std::max(percent, 1))},
                                                {"height", "10"}}));
}

Html BarList(const ValueSample& sample, const std::vector<ValueSample::Step>& steps, bool isCumulative,
             const ReportQuery& query)
{
    Html list;
    const std::string comparison = isCumulative ? "at least" : "equals";
    for (const ValueSample::Step& step : steps) {
        const std::string text = Shortened(step.label, MaxShownValueBytes);
        Html name = isCumulative ? Html("at least " + text) : Html::Stored(text);
        if (step.isAsked)
            name += Html::Element("b", {}, " – asked for");
        const Html bar = Bar(sample, step);
        const std::string address = ValueAddress(query, sample, comparison, step);
        list += Html::Element(
            "li", {},
            {Html::Element("span", {{"class", "name"}}, name),
             address.empty()
                 ? bar
                 : Html::Element("a", {{"href", address}, {"tabindex", "-1"}, {"aria-hidden", "true"}}, bar),
             Html::Element("span", {{"class", "number"}},
                           {Percentage(step.count, sample.Reported()) + ", ",
                            ValueLink(query, sample, comparison, step)})});
    }
    return Html::Element("ul", {{"class", "bars"}}, list);
}

Html FoldedTable(const ValueSample& sample, const ReportQuery& query)
{
    Table table("Values, the most frequent first", {{"Value"}, {"Sessions", true}, {"Share", true}});
    for (const ValueSample::Step& value : sample.Values(MaxTableRows))
        table.Add({Html::Stored(Shortened(value.label, MaxShownValueBytes)),
                   ValueLink(query, sample, "equals", value), Percentage(value.count, sample.Reported())});
    return Html::Element("details", {}, {Html::Element("summary", {}, "Figures"), table.Done("None.")});
}

/// "62 % have at least 8 GB (Memory)."
Html Sentences(const ValueSample& sample, const std::vector<AskedValue>& asked, const ReportQuery& query)
{
    Html sentences;
    for (const AskedValue& one : asked) {
        const int count = sample.Meeting(one.condition, one.ofAny);
        const std::string share = Percentage(count, sample.Reported());
        const ReportQuery meeting = query.WithValue(
            {sample.Id(), std::string(one.condition.comparison->name), one.condition.needed, one.ofAny});
        const bool isLinked = count > 0 && one.condition.needed.size() <= ValueCondition::MaxLinkedBytes;
        sentences +=
            Html::Element("p", {{"class", "asked"}},
                          {Html::Element("b", {}, isLinked ? Link(meeting.Address(), share) : Html(share)),
                           " have what is asked for: ", Html::Stored(one.condition.Text()),
                           one.ofAny ? " on any device (" : " (", Html::Stored(one.line), ")."});
    }
    return sentences;
}

}  // namespace

Html ValueChart(const ValueSample& sample, const std::vector<AskedValue>& asked, const ReportQuery& query)
{
    const std::string id = std::to_string(sample.Id()), name = NameOfValue(id);
    const Html title = Html::Element("figcaption", {}, name.empty() ? "Value " + id : name + " (" + id + ")");
    if (sample.Reported() == 0)
        return Html::Element("figure", {},
                             {title, Html::Element("p", {{"class", "empty"}}, "No session reports it.")});
    std::vector<std::string> needed;
    for (const AskedValue& one : asked) {
        if (one.condition.comparison->name == "at least")
            needed.push_back(one.condition.needed);
    }
    std::string basis = fmt::format("Of {} sessions that report it", Grouped(sample.Reported()));
    if (sample.Unreported() > 0)
        basis += fmt::format("; {} do not", Grouped(sample.Unreported()));
    if (sample.IsOfAny())
        basis += "; of several devices each counts";
    const bool isCumulative = sample.IsOfAmounts();
    return Html::Element(
        "figure", {{"class", "values"}},
        {title, Sentences(sample, asked, query), BarList(sample, sample.Steps(needed), isCumulative, query),
         Html::Element("p", {{"class", "basis"}}, basis + "."), FoldedTable(sample, query)});
}

}  // namespace kel::server
