#include "server/admin/Trial.h"

#include <algorithm>
#include <exception>

#include "server/admin/Layout.h"
#include "server/admin/Table.h"
#include "server/admin/Texts.h"

namespace kel::server {

namespace {

const LineTally* FindLine(const Tally& counts, const std::string& label)
{
    const auto found = std::find_if(counts.lines.begin(), counts.lines.end(),
                                    [&](const LineTally& line) { return line.label == label; });
    return found == counts.lines.end() ? nullptr : &*found;
}

}  // namespace

std::optional<Requirements> NewestRequirements(Store& store, const std::string& referrer)
{
    const auto set = store.NewestSet(referrer);
    if (!set)
        return std::nullopt;
    const std::string text = store.SetText(set->id);
    try {
        return Requirements::Read(text);
    } catch (const std::exception&) {
        return std::nullopt;  // an older program published it; the control's requests tell the operator so
    }
}

Trial Trial::Run(Store& store, const std::string& referrer, const Requirements& draft)
{
    Trial trial;
    const auto today = NewestRequirements(store, referrer);
    trial.sessions = ForEachRecentReport(store, referrer, [&](const Report& report) {
        trial.draft.Count(Judge(draft, report));
        if (today)
            trial.today.Count(Judge(*today, report));
    });
    return trial;
}

Html Trial::Show() const
{
    if (sessions.count == 0)
        return Html::Element(
            "p", {{"class", "empty"}},
            "No machine has been reported for this product yet, so there is nothing to try this on.");
    const bool hasToday = today.pass + today.fail + today.unknown > 0;
    std::string sentence = "Of " + sessions.Text() + " " + Grouped(draft.pass) + " would pass";
    sentence += hasToday ? ", today " + Grouped(today.pass) + "." : ".";
    sentence += " " + Grouped(draft.fail) + " would fail";
    sentence += hasToday ? ", today " + Grouped(today.fail) + "; " : "; ";
    sentence += Grouped(draft.unknown) + " would be unknown";
    sentence += hasToday ? ", today " + Grouped(today.unknown) + "." : ".";
    Table table("Line by line, with the failures under today's requirements", {{"Requirement"},
                                                                               {"Needed"},
                                                                               {"Pass", true},
                                                                               {"Fail", true},
                                                                               {"Fail today", true},
                                                                               {"Unknown", true}});
    for (const LineTally& line : draft.lines) {
        const LineTally* before = FindLine(today, line.label);
        table.Add({LabelOf(line.label, line.recommended), Html::Stored(line.needed), Grouped(line.pass),
                   Grouped(line.fail), before ? Grouped(before->fail) : std::string("new"),
                   Grouped(line.unknown)});
    }
    Html gone;
    for (const LineTally& line : today.lines) {
        if (!FindLine(draft, line.label))
            gone += (gone.IsEmpty() ? Html("No longer asked: ") : Html(", ")) + Html::Stored(line.label);
    }
    Html figures = Html::Element("p", {{"class", "notice note"}, {"role", "status"}}, sentence) +
                   table.Done("The draft has no line.");
    if (!gone.IsEmpty())
        figures += Html::Element("p", {}, gone);
    return figures;
}

}  // namespace kel::server
