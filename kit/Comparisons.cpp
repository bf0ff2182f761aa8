#include "kit/Comparisons.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>

#include "kit/Rights.h"
#include "kit/Text.h"
#include "program/text/UserError.h"
#include "service/Utf8.h"
#include "values/Junk.h"
#include "verdict/Catalogue.h"
#include "verdict/Readings.h"
#include "verdict/text/Text.h"

namespace kel::kit {

namespace {

constexpr std::size_t ComparisonFields = 7;
constexpr std::size_t ComparedVersionParts = 2;
constexpr double Percent = 100;

/// What a 1 of a tool's number stands for, in the base unit of the product's value.
const std::map<std::string, double> Units = {{"number", 1},          {"bytes", 1},
                                             {"kilobytes", 1024},    {"megabytes", 1024.0 * 1024},
                                             {"megahertz", 1000000}, {"bits a second", 1}};

/// In lower case, with single blanks: tools pad names.
std::string Normalized(const std::string& text)
{
    std::string tidy;
    for (const std::string& word : SplitFields(Lower(Trim(text)), ' ')) {
        if (!word.empty())
            tidy += (tidy.empty() ? "" : " ") + word;
    }
    return tidy;
}

/// A number at the beginning of a text, such as "6013 MB".
std::optional<double> LeadingNumber(const std::string& text)
{
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() ? std::optional(number) : std::nullopt;
}

bool IsSameAmount(const ComparedValue& row, const std::string& found, const std::string& answer)
{
    const std::optional<Amount> mine = ParseAmount(Lower(Trim(found)));
    const std::optional<double> other = LeadingNumber(answer);
    if (!mine || !other)
        return false;
    const double theirs = *other * Units.at(row.kind);
    // The product's text has rounded the number.
    return std::abs(mine->number - theirs) <=
           std::abs(theirs) * row.tolerance / Percent + mine->lastDigit / 2;
}

bool IsYes(const std::string& text)
{
    const std::string word = Lower(Trim(text));
    return !word.empty() && word != "no" && word != "false" && word != "0";
}

/// The first two numbers: tools and files disagree about the others.
bool IsSameVersion(const std::string& found, const std::string& answer)
{
    const auto beginning = [](const std::string& text) {
        std::vector<std::string> parts = SplitFields(Trim(text), '.');
        parts.resize(ComparedVersionParts);
        return parts;
    };
    return beginning(found) == beginning(answer);
}

std::string Joined(const std::vector<std::string>& texts)
{
    std::string joined;
    for (const std::string& text : texts)
        joined += (joined.empty() ? "" : "; ") + text;
    return joined;
}

/// The product leaves placeholders of the firmware out.
void DropPlaceholders(std::vector<std::string>& texts)
{
    for (std::string& text : texts)
        text = ToUtf8(TidyText(FromUtf8(text)));
    std::erase(texts, "");
}

Row CompareRow(const ComparedValue& row, const Snapshot& snapshot, Tools& tools)
{
    Row result{"Values beside the system's tools", std::to_string(row.id), State::NotHere, "", ""};
    std::vector<std::string> found;
    for (const Fact& fact : snapshot.facts) {
        if (fact.id == row.id && !fact.text.empty())
            found.push_back(fact.text);
    }
    const CatalogueValue* const known = FindCatalogueValue(row.id);
    result.name += std::string(" ") + known->Area() + ": " + known->Name() + ", " + row.tool;
    if (row.needsWindows && IsWine()) {
        result.found = "needs windows";
        return result;
    }
    Answer answer = tools.Ask(row.tool, row.expression);
    if (row.kind == "name")
        DropPlaceholders(answer.texts);
    result.found = Joined(found);
    result.expected = Joined(answer.texts);
    if (answer.texts.empty()) {
        result.found += (found.empty() ? "" : "; ") +
                        (answer.problem.empty() ? std::string("the tool knows none") : answer.problem);
        return result;
    }
    result.state = AreSame(row, found, answer.texts) ? State::Ok : State::Wrong;
    if (found.empty())
        result.found = "(empty)";
    return result;
}

}  // namespace

std::vector<ComparedValue> ReadComparisons(const std::string& path)
{
    std::vector<ComparedValue> table;
    for (const std::vector<std::string>& fields : ReadTable(path, ComparisonFields)) {
        ComparedValue row{0,
                          fields[1],
                          fields[2],
                          fields[3],
                          0,
                          fields[5] == "rights",
                          fields[5] == "windows",
                          fields[6] == "all"};
        row.id = static_cast<int>(LeadingNumber(fields[0]).value_or(0));
        row.tolerance = LeadingNumber(fields[4]).value_or(0);
        if (FindCatalogueValue(row.id) == nullptr)
            throw program::UserError(path + ": the catalogue has no value " + fields[0] + ".");
        IsSame(row, "", "");  // throws for a kind that is not known
        table.push_back(std::move(row));
    }
    return table;
}

bool IsSame(const ComparedValue& row, const std::string& found, const std::string& answer)
{
    if (Units.contains(row.kind))
        return IsSameAmount(row, found, answer);
    const std::string mine = Normalized(found);
    const std::string other = Normalized(answer);
    if (row.kind == "text" || row.kind == "name")
        return mine == other;
    if (row.kind == "part")
        return !mine.empty() && !other.empty() &&
               (mine.find(other) != std::string::npos || other.find(mine) != std::string::npos);
    if (row.kind == "yes")
        return IsYes(mine) == IsYes(other);
    if (row.kind == "version")
        return IsSameVersion(mine, other);
    throw program::UserError("There is no kind of comparison \"" + row.kind + "\".");
}

bool AreSame(const ComparedValue& row, const std::vector<std::string>& found,
             const std::vector<std::string>& answers)
{
    if (found.empty() || (row.needsAll && found.size() < answers.size()))
        return false;
    return std::ranges::all_of(found, [&](const std::string& text) {
        return std::ranges::any_of(answers,
                                   [&](const std::string& answer) { return IsSame(row, text, answer); });
    });
}

Rows Compare(const std::vector<ComparedValue>& table, const Snapshot& snapshot, Tools& tools)
{
    std::vector<std::string> expressions;
    for (const ComparedValue& row : table) {
        if (row.tool == "powershell")
            expressions.push_back(row.expression);
    }
    tools.RunPowerShell(expressions);
    Rows rows;
    rows.reserve(table.size());
    for (const ComparedValue& row : table)
        rows.push_back(CompareRow(row, snapshot, tools));
    return rows;
}

}  // namespace kel::kit
