#include <algorithm>
#include <array>
#include <cstdio>
#include <vector>

#include "kit/Results.h"
#include "verdict/PageStyle.h"
#include "verdict/text/Printable.h"
#include "verdict/text/Text.h"

namespace kel::kit {

namespace {

std::string Cell(const std::string& text)
{
    return "<td>" + Escape(Printable(text)) + "</td>";
}

std::string SecondsText(double seconds)
{
    std::array<char, 32> text = {};
    if (seconds > 0)
        std::snprintf(text.data(), text.size(), "%.3f", seconds);
    return text.data();
}

std::string LineOf(const Row& row)
{
    const char* const shown = row.state == State::Ok      ? "pass"
                              : row.state == State::Wrong ? "fail"
                                                          : "unknown";
    const char* const word = row.state == State::Ok      ? "✓ ok"
                             : row.state == State::Wrong ? "✗ wrong"
                                                         : "– not here";
    return std::string("<tr class=\"") + shown + "\"><th scope=\"row\">" + Escape(Printable(row.name)) +
           "</th><td><span class=\"mark\">" + word + "</span></td>" + Cell(row.expected) + Cell(row.found) +
           Cell(SecondsText(row.seconds)) + "</tr>\n";
}

/// A table of the rows that are chosen; nothing without any.
template <typename IsChosen>
std::string TableOf(const Rows& rows, const std::string& caption, IsChosen isChosen)
{
    std::string lines;
    for (const Row& row : rows) {
        if (isChosen(row))
            lines += LineOf(row);
    }
    if (lines.empty())
        return {};
    return "<table>\n<caption>" + Escape(caption) +
           "</caption>\n<thead><tr><th scope=\"col\">Check</th><th scope=\"col\">Result</th>"
           "<th scope=\"col\">Expected, or the tool's answer</th><th scope=\"col\">Found</th>"
           "<th scope=\"col\">Seconds</th></tr></thead>\n<tbody>\n" +
           lines + "</tbody>\n</table>\n";
}

}  // namespace

/// What is wrong comes first, then each part.
std::string WritePage(const Results& results)
{
    const std::size_t wrong = results.Count(State::Wrong);
    const std::string total = wrong == 0 ? "Nothing is wrong." : std::to_string(wrong) + " are wrong.";
    std::string page =
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>Detection on this "
        "machine</title>\n<style>" +
        std::string(PageStyle) + "</style>\n</head>\n<body>\n<main>\n<h1>Detection " +
        Escape(results.version) + " on " + Escape(results.windows) + "</h1>\n<p class=\"total " +
        (wrong == 0 ? "pass" : "fail") + "\">" + total + "</p>\n<p>" +
        std::to_string(results.Count(State::Ok)) + " checks are ok; " +
        std::to_string(results.Count(State::NotHere)) + " need what this machine does not have. Made at " +
        Escape(results.time) +
        ". Texts such as “&lt;name 1&gt;” stand for what identifies a person or a device.</p>\n";
    page += TableOf(results.rows, "Wrong", [](const Row& row) { return row.state == State::Wrong; });
    std::vector<std::string> parts;
    for (const Row& row : results.rows) {
        if (std::ranges::count(parts, row.part) == 0)
            parts.push_back(row.part);
    }
    for (const std::string& part : parts)
        page += TableOf(results.rows, part, [&](const Row& row) { return row.part == part; });
    return page + "</main>\n</body>\n</html>\n";
}

}  // namespace kel::kit
