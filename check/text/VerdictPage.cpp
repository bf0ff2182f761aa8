#include "check/text/VerdictPage.h"

#include <algorithm>
#include <string_view>

#include "program/text/Characters.h"
#include "verdict/text/Text.h"

namespace kel::check {

namespace {

constexpr std::size_t MaxText = 200;       // bytes of a text
constexpr std::size_t MaxShownLines = 12;  // without the hidden ones, which are as many again
constexpr std::string_view Bullet = "• ";

/// A part of the verdict: the lines of one kind under a heading.
struct Section {
    std::string_view heading;
    bool (*contains)(const VerdictLine&);
};

bool IsRequired(const VerdictLine& line, Result result)
{
    return !line.recommended && line.result == result;
}

constexpr Section Open[] = {
    {"Not met:", [](const VerdictLine& line) { return IsRequired(line, Result::Fail); }},
    {"Could not be checked:", [](const VerdictLine& line) { return IsRequired(line, Result::Unknown); }},
    {"Recommended, but not met:",
     [](const VerdictLine& line) { return line.recommended && line.result == Result::Fail; }},
    {"Recommended, but could not be checked:",
     [](const VerdictLine& line) { return line.recommended && line.result == Result::Unknown; }},
};

constexpr Section Met[] = {
    {"Met:", [](const VerdictLine& line) { return line.result == Result::Pass; }},
};

std::string Shown(const std::string& text)
{
    return Shortened(kel::Printable(text), MaxText);
}

std::string Describe(const VerdictLine& line)
{
    std::string text = std::string(Bullet) + Shown(line.label) + ": needs " + Shown(line.ShownNeeded()) +
                       "; " + (line.found.empty() ? "not found" : "found " + Shown(line.found));
    if (line.result != Result::Pass && !line.advice.empty())
        text += "\n   " + Shown(line.advice);
    return text;
}

template <std::size_t Count>
std::string DescribeAll(const Verdict& verdict, const Section (&sections)[Count])
{
    std::string text;
    std::size_t shown = 0, leftOut = 0;
    for (const Section& section : sections) {
        bool hasHeading = false;
        for (const VerdictLine& line : verdict.lines) {
            if (!section.contains(line))
                continue;
            if (shown == MaxShownLines) {
                ++leftOut;
                continue;
            }
            if (!hasHeading)
                text += (text.empty() ? "" : "\n\n") + std::string(section.heading);
            hasHeading = true;
            text += "\n" + Describe(line);
            ++shown;
        }
    }
    if (leftOut > 0)
        text += "\n\n… and " + std::to_string(leftOut) + " more, which the saved file has.";
    return text;
}

/// "1 of 10 requirements is not met": recommendations do not count.
std::string Summarise(const Verdict& verdict)
{
    if (verdict.total == Result::Pass)
        return "This computer meets the requirements";
    const bool isFail = verdict.total == Result::Fail;
    const auto isRequired = [](const VerdictLine& line) { return !line.recommended; };
    const auto all = std::ranges::count_if(verdict.lines, isRequired);
    const auto open = std::ranges::count_if(
        verdict.lines, [&](const VerdictLine& line) { return IsRequired(line, verdict.total); });
    if (open == 0)
        return isFail ? "This computer does not meet the requirements"
                      : "The requirements could not be checked";
    return std::to_string(open) + " of " + std::to_string(all) +
           (all == 1 ? " requirement " : " requirements ") +
           (isFail ? open == 1 ? "is not met" : "are not met" : "could not be checked");
}

}  // namespace

Page VerdictPage(const Verdict& verdict)
{
    Page page{Summarise(verdict), Shown(verdict.title),
              verdict.total == Result::Pass ? PageIcon::Information : PageIcon::Warning};
    if (const std::string open = DescribeAll(verdict, Open); !open.empty())
        page.content += "\n\n" + open;
    page.hidden = DescribeAll(verdict, Met);
    if (!page.hidden.empty())
        page.expander = "What is met?";
    return page;
}

}  // namespace kel::check
