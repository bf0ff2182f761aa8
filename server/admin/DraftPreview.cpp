#include "server/admin/DraftPreview.h"

#include <fmt/format.h>
#include <algorithm>
#include <optional>
#include <vector>

#include "server/admin/Layout.h"
#include "server/admin/kit/Table.h"
#include "server/admin/kit/Texts.h"
#include "server/store/RequirementSets.h"

namespace kel::server {

namespace {

using Lines = std::vector<LineTally>;

/// For each line of the draft, the place of the published line that it replaces: the same line, or else one
/// with the same label, preferably of the same kind, in the order of the file. Nothing for a new line.
std::vector<std::optional<std::size_t>> Replaced(const Lines& draft, const Lines& today)
{
    using IsPair = bool (*)(const LineTally&, const LineTally&);
    constexpr IsPair Kinds[] = {[](const LineTally& a, const LineTally& b) {
                                    return a.label == b.label && a.needed == b.needed &&
                                           a.recommended == b.recommended;
                                },
                                [](const LineTally& a, const LineTally& b) {
                                    return a.label == b.label && a.recommended == b.recommended;
                                },
                                [](const LineTally& a, const LineTally& b) { return a.label == b.label; }};
    std::vector<std::optional<std::size_t>> replaced(draft.size());
    std::vector<bool> isTaken(today.size());
    for (const IsPair isPair : Kinds) {
        for (std::size_t i = 0; i < draft.size(); ++i) {
            for (std::size_t j = 0; j < today.size() && !replaced[i]; ++j) {
                if (isTaken[j] || !isPair(draft[i], today[j]))
                    continue;
                replaced[i] = j;
                isTaken[j] = true;
            }
        }
    }
    return replaced;
}

}  // namespace

DraftPreview DraftPreview::Run(Database& database, const std::string& referrer, const Requirements& draft)
{
    const auto set = RequirementSets(database).Newest(referrer);
    const auto today = set ? Requirements::ReadStored(RequirementSets(database).Text(set->id)) : std::nullopt;
    DraftPreview preview{{}, {}, {}, {draft, today}};
    ReportFilter ofProduct;
    ofProduct.referrer = referrer;
    preview.sessions = ForEachRecentReport(database, ofProduct, [&](const Report& report) {
        preview.values.Count(report);
        preview.draft.Count(Judge(draft, report.Lookup()));
        if (today)
            preview.today.Count(Judge(*today, report.Lookup()));
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
    const bool hasToday = today.All() > 0;
    const auto count = [hasToday](std::int64_t sessionCount, std::string_view result,
                                  std::int64_t countToday) {
        const std::string text = fmt::format("{} would {}", Grouped(sessionCount), result);
        return hasToday ? fmt::format("{}, today {}", text, Grouped(countToday)) : text;
    };
    const std::string sentence =
        fmt::format("Of {} {}. {}; {}.", sessions.Text(), count(draft.pass, "pass", today.pass),
                    count(draft.fail, "fail", today.fail), count(draft.unknown, "be unknown", today.unknown));
    Table table("Line by line, with the failures under today's requirements", {{"Requirement"},
                                                                               {"Needed"},
                                                                               {"Pass", true},
                                                                               {"Fail", true},
                                                                               {"Fail today", true},
                                                                               {"Unknown", true}});
    const auto replaced = Replaced(draft.lines, today.lines);
    for (std::size_t i = 0; i < draft.lines.size(); ++i) {
        const LineTally& line = draft.lines[i];
        table.Add({LineLabel(line.label, line.recommended), Html::Stored(line.needed), Grouped(line.pass),
                   Grouped(line.fail),
                   replaced[i] ? Grouped(today.lines[*replaced[i]].fail) : std::string("new"),
                   Grouped(line.unknown)});
    }
    Html gone;
    for (std::size_t j = 0; j < today.lines.size(); ++j) {
        if (std::find(replaced.begin(), replaced.end(), j) == replaced.end())
            gone += (gone.IsEmpty() ? Html("No longer asked: ") : Html(", ")) +
                    LineLabel(today.lines[j].label, today.lines[j].recommended);
    }
    Html figures = Html::Element("p", {{"class", "notice note"}, {"role", "status"}}, sentence) +
                   table.Done("The draft has no line.");
    if (!gone.IsEmpty())
        figures += Html::Element("p", {}, gone);
    return figures + ShowValues();
}

}  // namespace kel::server
