#include "server/admin/TextDifference.h"

#include <algorithm>
#include <cstdint>

namespace kel::server {

namespace {

using Kind = DifferenceLine::Kind;
using TextLines = std::vector<std::string_view>;

constexpr std::size_t MaxCells = 4'000'000;  // of the table of common lines: 16 MB, some milliseconds
constexpr std::size_t Context = 3;           // lines that are shown around a change

TextLines DivideLines(std::string_view text)
{
    TextLines lines;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        lines.push_back(line);
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return lines;
}

/// For each pair of lines, how many lines the rests from there on have in common.
class CommonLines {
public:
    CommonLines(const TextLines& before, const TextLines& after)
        : width(after.size() + 1), counts((before.size() + 1) * width)
    {
        for (std::size_t i = before.size(); i-- > 0;) {
            for (std::size_t j = after.size(); j-- > 0;)
                counts[i * width + j] =
                    before[i] == after[j] ? At(i + 1, j + 1) + 1 : std::max(At(i + 1, j), At(i, j + 1));
        }
    }

    std::uint32_t At(std::size_t i, std::size_t j) const { return counts[i * width + j]; }

private:
    std::size_t width;
    std::vector<std::uint32_t> counts;
};

void AddChanges(std::vector<DifferenceLine>& lines, const TextLines& before, const TextLines& after)
{
    std::size_t i = 0, j = 0;
    if ((before.size() + 1) * (after.size() + 1) <= MaxCells) {
        const CommonLines common(before, after);
        while (i < before.size() && j < after.size()) {
            if (before[i] == after[j]) {
                lines.push_back({Kind::Same, after[j++]});
                ++i;
            } else if (common.At(i + 1, j) >= common.At(i, j + 1)) {
                lines.push_back({Kind::Removed, before[i++]});
            } else {
                lines.push_back({Kind::Added, after[j++]});
            }
        }
    }
    for (; i < before.size(); ++i)
        lines.push_back({Kind::Removed, before[i]});
    for (; j < after.size(); ++j)
        lines.push_back({Kind::Added, after[j]});
}

bool IsNearChange(const std::vector<DifferenceLine>& lines, std::size_t place)
{
    const std::size_t first = place < Context ? 0 : place - Context;
    const std::size_t end = std::min(place + Context + 1, lines.size());
    return std::any_of(lines.begin() + static_cast<std::ptrdiff_t>(first),
                       lines.begin() + static_cast<std::ptrdiff_t>(end),
                       [](const DifferenceLine& line) { return line.kind != Kind::Same; });
}

}  // namespace

std::vector<DifferenceLine> CompareTexts(std::string_view before, std::string_view after)
{
    TextLines from = DivideLines(before), to = DivideLines(after);
    const auto [fromMiddle, toMiddle] = std::mismatch(from.begin(), from.end(), to.begin(), to.end());
    std::vector<DifferenceLine> lines;
    for (auto same = from.begin(); same != fromMiddle; ++same)
        lines.push_back({Kind::Same, *same});
    from.erase(from.begin(), fromMiddle);
    to.erase(to.begin(), toMiddle);
    const auto [fromEnd, toEnd] = std::mismatch(from.rbegin(), from.rend(), to.rbegin(), to.rend());
    const TextLines rest(fromEnd.base(), from.end());
    from.erase(fromEnd.base(), from.end());
    to.erase(toEnd.base(), to.end());
    AddChanges(lines, from, to);
    for (const std::string_view same : rest)
        lines.push_back({Kind::Same, same});
    return lines;
}

Html ShowDifference(const std::string& before, const std::string& after)
{
    const std::vector<DifferenceLine> lines = CompareTexts(before, after);
    Html shown;
    bool isGap = false;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (!IsNearChange(lines, i)) {
            isGap = true;
            continue;
        }
        if (isGap)
            shown += Html::Element("span", {{"class", "gap"}}, "…\n");
        isGap = false;
        const std::string text(lines[i].text);
        if (lines[i].kind == Kind::Same)
            shown += "  " + text + "\n";
        else
            shown += lines[i].kind == Kind::Added ? Html::Element("ins", {}, "+ " + text + "\n")
                                                  : Html::Element("del", {}, "− " + text + "\n");
    }
    return shown.IsEmpty() ? Html::Element("p", {{"class", "empty"}}, "The texts are the same.")
                           : Html::Element("pre", {{"class", "difference"}, {"tabindex", "0"}}, shown);
}

}  // namespace kel::server
