#include "server/admin/DraftPreview.h"

#include <fmt/format.h>
#include <algorithm>
#include <optional>

#include "server/admin/Layout.h"
#include "server/admin/ReportQuery.h"
#include "server/admin/kit/Table.h"
#include "server/admin/kit/Texts.h"
#include "server/store/RequirementSets.h"

namespace kel::server {

namespace {

/// The labels of the lines that decide the total of a verdict that does not pass.
std::string LabelsNotMet(const Requirements& requirements, const VerdictResults& verdict)
{
    std::string labels;
    for (std::size_t i = 0; i < verdict.lines.size(); ++i) {
        const Requirement& line = requirements.lines[i];
        if (verdict.lines[i] != Result::Pass && !line.recommended)
            labels += (labels.empty() ? "" : ", ") + line.label.Default();
    }
    return labels;
}

/// "8 → 6", or the only one of both, or of two that are the same.
Html FromTo(const std::optional<Html>& from, const std::optional<Html>& to)
{
    if (from && to && from->Markup() != to->Markup())
        return *from + " → " + *to;
    return to ? *to : from.value_or(Html());
}

}  // namespace

DraftPreview DraftPreview::Run(Database& database, const std::string& referrer, const Requirements& draft)
{
    const auto set = RequirementSets(database).Newest(referrer);
    const auto today = set ? Requirements::ReadStored(RequirementSets(database).Text(set->id)) : std::nullopt;
    const Requirements inForce = today.value_or(Requirements());
    DraftPreview preview{referrer, draft, inForce, {}, Tally(draft), Tally(inForce), {}, 0, {draft, today}};
    ReportFilter ofProduct;
    ofProduct.referrer = referrer;
    preview.sessions = ForEachRecentReport(database, ofProduct, [&](const Report& report, std::int64_t id) {
        preview.values.Count(report);
        const VerdictResults then = JudgeResults(draft, report.Lookup());
        preview.draft.Count(then);
        if (!today)
            return;
        const VerdictResults now = JudgeResults(inForce, report.Lookup());
        preview.today.Count(now);
        if (now.total == then.total)
            return;
        if (++preview.machineCount <= static_cast<std::int64_t>(MaxMachines))
            preview.machines.push_back(
                {id, now.total, then.total,
                 then.total == Result::Pass ? LabelsNotMet(inForce, now) : LabelsNotMet(draft, then)});
    });
    return preview;
}

Html DraftPreview::Show() const
{
    if (sessions.count == 0)
        return Html::Element(
                   "p", {{"class", "empty"}},
                   "No machine has been reported for this product yet, so there is nothing to try this on.") +
               ShowValues();
    const auto changes = CompareLines(inForce, requirements);
    return ShowShares() + ShowChangedLines(changes) + ShowMachines() + ShowLines(changes) + ShowValues();
}

Html DraftPreview::LineCount(const Requirement& line, Result result, std::int64_t count) const
{
    const auto condition = ValueCondition::OfLine(line, result);
    return condition ? CountLink(ReportQuery{referrer, {}}.WithValue(*condition), count)
                     : Html(Grouped(count));
}

Html DraftPreview::ShowShares() const
{
    const bool hasToday = today.All() > 0;
    const auto count = [hasToday](std::int64_t sessionCount, std::string_view result,
                                  std::int64_t countToday) {
        const std::string text = fmt::format("{} would {}", Grouped(sessionCount), result);
        return hasToday ? fmt::format("{}, today {}", text, Grouped(countToday)) : text;
    };
    const std::string share = Percentage(draft.pass, draft.All());
    const std::string answer =
        hasToday ? fmt::format("{} would pass; today it is {}.", share, Percentage(today.pass, today.All()))
                 : fmt::format("{} would pass.", share);
    const std::string sentence =
        fmt::format("Of {} {}. {}; {}.", sessions.Text(), count(draft.pass, "pass", today.pass),
                    count(draft.fail, "fail", today.fail), count(draft.unknown, "be unknown", today.unknown));
    return Html::Element("div", {{"class", "notice note"}, {"role", "status"}},
                         {Html::Element("p", {{"class", "answer"}}, answer), sentence});
}

Html DraftPreview::ShowChangedLines(const std::vector<LineChange>& changes) const
{
    if (today.All() == 0)
        return {};
    Table table("Lines that change, and how many pass",
                {{"Requirement"}, {"Change"}, {"Needed"}, {"Pass", true}}, "dense");
    for (const LineChange& change : changes) {
        if (change.isSame)
            continue;
        const LineTally* const from = change.before ? &today.lines[*change.before] : nullptr;
        const LineTally* const to = change.after ? &draft.lines[*change.after] : nullptr;
        const auto needed = [](const LineTally* line) {
            return line ? std::optional(Html::Stored(line->needed)) : std::nullopt;
        };
        std::optional<Html> passBefore, pass;
        if (from)
            passBefore = LineCount(inForce.lines[*change.before], Result::Pass, from->pass);
        if (to)
            pass = LineCount(requirements.lines[*change.after], Result::Pass, to->pass);
        const LineTally& shown = to ? *to : *from;
        table.Add({LineLabel(shown.label, shown.recommended), ToString(change),
                   FromTo(needed(from), needed(to)), FromTo(passBefore, pass)});
    }
    return table.Done("No line differs from the published requirements.");
}

Html DraftPreview::ShowMachines() const
{
    if (today.All() == 0)
        return {};
    Table table(fmt::format("Machines with another result: {}{}", Grouped(machineCount),
                            machineCount > static_cast<std::int64_t>(MaxMachines)
                                ? fmt::format(", of which the newest {} are shown", MaxMachines)
                                : ""),
                {{"Report"}, {"Today"}, {"By the draft"}, {"Not met"}}, "dense");
    for (const ChangedMachine& machine : machines)
        table.Add({Link(ReportPath(machine.report), "Report " + std::to_string(machine.report)),
                   Mark(machine.today), Mark(machine.draft), Html::Stored(machine.lines)});
    return table.Done("No machine would have another result.");
}

Html DraftPreview::ShowLines(const std::vector<LineChange>& changes) const
{
    Table table("Line by line, with the failures under today's requirements",
                {{"Requirement"},
                 {"Needed"},
                 {"Pass", true},
                 {"Fail", true},
                 {"Fail today", true},
                 {"Unknown", true}},
                "dense");
    Html gone;
    for (const LineChange& change : changes) {
        if (!change.after) {
            const Requirement& line = inForce.lines[*change.before];
            gone += (gone.IsEmpty() ? Html("No longer asked: ") : Html(", ")) +
                    LineLabel(line.label.Default(), line.recommended);
            continue;
        }
        const LineTally& line = draft.lines[*change.after];
        const Requirement& asked = requirements.lines[*change.after];
        table.Add({LineLabel(line.label, line.recommended), Html::Stored(line.needed),
                   LineCount(asked, Result::Pass, line.pass), LineCount(asked, Result::Fail, line.fail),
                   change.before ? LineCount(inForce.lines[*change.before], Result::Fail,
                                             today.lines[*change.before].fail)
                                 : Html("new"),
                   LineCount(asked, Result::Unknown, line.unknown)});
    }
    Html lines = table.Done("The draft has no line.") +
                 Html::Element("p", {{"class", "basis"}},
                               "The numbers of lines with one condition lead to all reports of the product "
                               "that have that result.");
    if (!gone.IsEmpty())
        lines += Html::Element("p", {}, gone);
    return lines;
}

std::vector<Finding> DraftPreview::FindUnreported(const std::string& text) const
{
    std::vector<Finding> findings;
    if (sessions.count == 0)
        return findings;
    const std::vector<int> unreported = values.FindUnreported();
    for (std::size_t i = 0; i < requirements.lines.size(); ++i) {
        const std::vector<Alternative>& ways = requirements.lines[i].anyOf;
        for (std::size_t j = 0; j < ways.size(); ++j) {
            for (std::size_t k = 0; k < ways[j].allOf.size(); ++k) {
                const int id = ways[j].allOf[k].group;
                if (std::find(unreported.begin(), unreported.end(), id) != unreported.end() &&
                    findings.size() < static_cast<std::size_t>(CheckedRequirements::MaxFindings))
                    findings.push_back(
                        MakeFinding(text, false, {i, j, k}, "id",
                                    fmt::format("no machine of {} reports {}", sessions.Text(), id)));
            }
        }
    }
    return findings;
}

}  // namespace kel::server
