#include "server/admin/LineChanges.h"

#include <algorithm>

#include "server/admin/Layout.h"
#include "server/admin/kit/Table.h"

namespace kel::server {

namespace {

using IsSamePair = bool (*)(const Requirement&, const Requirement&);

bool HaveSameLabel(const Requirement& one, const Requirement& other)
{
    return one.label.Default() == other.label.Default();
}

bool HaveSameConditions(const Requirement& one, const Requirement& other)
{
    return DescribeConditions(one) == DescribeConditions(other);
}

bool AreEqual(const Requirement& one, const Requirement& other)
{
    return HaveSameLabel(one, other) && HaveSameConditions(one, other) &&
           one.recommended == other.recommended && one.Needed() == other.Needed() &&
           one.neededText.Default() == other.neededText.Default() &&
           one.advice.Default() == other.advice.Default();
}

// The most alike first.
constexpr IsSamePair Pairings[] = {AreEqual,
                                   [](const Requirement& one, const Requirement& other) {
                                       return HaveSameLabel(one, other) && HaveSameConditions(one, other) &&
                                              one.recommended == other.recommended;
                                   },
                                   [](const Requirement& one, const Requirement& other) {
                                       return HaveSameLabel(one, other) &&
                                              one.recommended == other.recommended;
                                   },
                                   HaveSameLabel, HaveSameConditions};

Html ShowLine(const Requirement* line)
{
    if (!line)
        return "–";
    Html text = Html::Stored(DescribeConditions(*line));
    if (line->recommended)
        text += Html::Element("div", {{"class", "kind"}}, "Recommended");
    if (!line->neededText.Default().empty())
        text += Html::Element("div", {}, {"Shown as: ", Html::Stored(line->neededText.Default())});
    if (!line->advice.Default().empty())
        text += Html::Element("div", {}, {"Advice: ", Html::Stored(line->advice.Default())});
    return text;
}

}  // namespace

std::vector<LineChange> CompareLines(const Requirements& before, const Requirements& after)
{
    std::vector<LineChange> changes(after.lines.size());
    std::vector<bool> isTaken(before.lines.size());
    for (const IsSamePair isPair : Pairings) {
        for (std::size_t i = 0; i < after.lines.size(); ++i) {
            changes[i].after = i;
            for (std::size_t j = 0; j < before.lines.size() && !changes[i].before; ++j) {
                if (isTaken[j] || !isPair(after.lines[i], before.lines[j]))
                    continue;
                isTaken[j] = true;
                changes[i].before = j;
                changes[i].isSame = AreEqual(after.lines[i], before.lines[j]);
            }
        }
    }
    for (std::size_t j = 0; j < before.lines.size(); ++j) {
        if (!isTaken[j])
            changes.push_back({j, {}, false});
    }
    return changes;
}

std::string ToString(const LineChange& change)
{
    return change.isSame ? "same" : !change.before ? "new" : !change.after ? "removed" : "changed";
}

std::string DescribeConditions(const Requirement& line)
{
    std::string text;
    for (const Alternative& alternative : line.anyOf) {
        text += text.empty() ? "" : ", or ";
        for (const Condition& condition : alternative.allOf)
            text += (&condition == alternative.allOf.data() ? "" : " and ") +
                    std::to_string(condition.group) + " " + condition.Text();
        text += alternative.ofAny ? " (any of them)" : "";
    }
    return text;
}

Html ChangesTable(const std::string& caption, const Requirements& before, const Requirements& after)
{
    Table table(caption, {{"Requirement"}, {"Change"}, {"Before"}, {"After"}});
    for (const LineChange& change : CompareLines(before, after)) {
        if (change.isSame)
            continue;
        const Requirement* const from = change.before ? &before.lines[*change.before] : nullptr;
        const Requirement* const to = change.after ? &after.lines[*change.after] : nullptr;
        Html label = Html::Stored((to ? to : from)->label.Default());
        if (from && to && !HaveSameLabel(*from, *to))
            label +=
                Html::Element("div", {{"class", "kind"}}, {"Before: ", Html::Stored(from->label.Default())});
        table.Add({label, ToString(change), ShowLine(from), ShowLine(to)});
    }
    return table.Done("No requirement differs.");
}

}  // namespace kel::server
