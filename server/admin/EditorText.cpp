#include "server/admin/EditorText.h"

#include <fmt/format.h>
#include <algorithm>
#include <map>

#include "server/admin/Layout.h"
#include "server/admin/LineChanges.h"
#include "verdict/JsonPlaces.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

constexpr int MaxNumbered = 10'000;  // lines; a draft has some hundred
constexpr int MinRows = 22;
constexpr int SpareRows = 50;  // numbers for lines that are typed before the next answer
constexpr std::size_t MaxQuote = 120;

std::string LineId(int line)
{
    return "line-" + std::to_string(line);
}

int CountLines(std::string_view text)
{
    return 1 + static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

std::string LineText(std::string_view text, int line)
{
    while (--line > 0)
        text.remove_prefix(std::min(text.find('\n') + 1, text.size()));
    return Shortened(Trim(text.substr(0, text.find('\n'))), MaxQuote);
}

Html FindingsList(const std::string& text, const std::vector<Finding>& findings, bool isError)
{
    Html list;
    for (const Finding& finding : findings) {
        if (finding.isError != isError)
            continue;
        Html entry = finding.text;
        if (finding.line > 0)
            entry = Html::Element("a", {{"href", "#" + LineId(finding.line)}}, entry) +
                    Html::Element("div", {}, Html::Element("code", {}, LineText(text, finding.line)));
        list += Html::Element("li", {}, entry);
    }
    return Html::Element("ul", {}, list);
}

}  // namespace

Html NumberedText(const std::string& text, const std::vector<Finding>& findings)
{
    std::map<int, bool> marks;  // by line: whether one of its findings is an error
    for (const Finding& finding : findings)
        marks[finding.line] = marks[finding.line] || finding.isError;
    const int lines = CountLines(text), last = std::min(lines, MaxNumbered) + SpareRows;
    Html numbers;
    std::string plain;
    for (int line = 1; line <= last; ++line) {
        const auto mark = marks.find(line);
        if (mark == marks.end()) {
            plain += std::to_string(line) + "\n";
            continue;
        }
        numbers += plain;
        plain.clear();
        numbers += Html::Element("span", {{"id", LineId(line)}, {"class", mark->second ? "bad" : "doubt"}},
                                 std::to_string(line) + (mark->second ? " ✗" : " !")) +
                   "\n";
    }
    numbers += plain;
    return Html::Element("label", {{"for", "text"}}, "Draft, as JSON") +
           Html::Element(
               "div", {{"class", "numbered"}},
               {Html::Element("pre", {{"class", "numbers"}, {"aria-hidden", "true"}}, numbers),
                Html::Element("textarea",
                              {{"id", "text"},
                               {"name", "text"},
                               {"rows", std::to_string(std::clamp(lines + 2, MinRows, MaxNumbered))},
                               {"spellcheck", "false"}},
                              text)});
}

Html FindingsBox(const std::string& text, const std::vector<Finding>& findings)
{
    const auto errors = std::count_if(findings.begin(), findings.end(),
                                      [](const Finding& finding) { return finding.isError; });
    const auto warnings = static_cast<std::ptrdiff_t>(findings.size()) - errors;
    Html box;
    if (errors > 0)
        box += Html::Element(
            "div", {{"class", "notice bad"}, {"role", "alert"}},
            {fmt::format("Not valid yet. Errors: {}.", errors), FindingsList(text, findings, true)});
    if (warnings > 0)
        box += Html::Element(
            "div", {{"class", "notice doubt"}, {"role", "status"}},
            {fmt::format("Probably not meant, but it can be published. Warnings: {}.", warnings),
             FindingsList(text, findings, false)});
    return box;
}

Html LineList(const std::string& text, const CheckedRequirements& checked)
{
    const std::vector<int> places = FindListLines(text, "requirements");
    Html list;
    for (std::size_t i = 0; i < checked.requirements.lines.size() && i < places.size(); ++i) {
        const Requirement& line = checked.requirements.lines[i];
        const std::string& label = line.label.Default();
        Html entry = line.anyOf.empty() ? Html("not readable yet")
                                        : LineLabel(label.empty() ? "no label" : label, line.recommended);
        entry += Html::Element("div", {{"class", "kind"}},
                               {fmt::format("line {}: ", places[i]), Html::Stored(DescribeConditions(line))});
        list += Html::Element("li", {}, entry);
    }
    return Html::Element("h2", {}, "Lines") +
           (list.IsEmpty() ? Html::Element("p", {{"class", "empty"}}, "The text has no line yet.")
                           : Html::Element("ol", {{"class", "lines"}}, list));
}

}  // namespace kel::server
