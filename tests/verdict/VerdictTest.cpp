// Runs the tables of cases beside this file, in the service's tests and in those of the build for Windows.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "../support/TestFiles.h"
#include "verdict/Comparison.h"
#include "verdict/ConditionCheck.h"
#include "verdict/NominalSize.h"
#include "verdict/Requirements.h"
#include "verdict/RequirementsCheck.h"
#include "verdict/ValueKinds.h"
#include "verdict/Verdict.h"
#include "verdict/text/LowerCase.h"

namespace kel {
namespace {

using Texts = std::vector<std::string>;

Texts Divide(const std::string& text, const std::string& separator)
{
    Texts parts;
    std::size_t start = 0;
    for (std::size_t end; (end = text.find(separator, start)) != text.npos; start = end + separator.size())
        parts.push_back(text.substr(start, end - start));
    parts.push_back(text.substr(start));
    return parts;
}

Texts ReadLines(const std::string& file)
{
    std::ifstream stream(test::TestFile(KEL_VERDICT_CASES) / file, std::ios::binary);
    Texts lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    EXPECT_FALSE(lines.empty()) << file;
    return lines;
}

std::string Repeat(const std::string& text, int times)
{
    std::string repeated;
    for (int i = 0; i < times; ++i)
        repeated += text;
    return repeated;
}

/// A set of requirements of these lines.
std::string SetOf(const std::string& lines)
{
    return R"({"title": "T", "requirements": [)" + lines + "]}";
}

std::string ReasonAgainst(const std::string& text)
{
    try {
        Requirements::Read(text);
        return "accepted";
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

TEST(Comparison, FollowsTheTable)
{
    std::vector<Texts> rows;
    for (const std::string& line : ReadLines("comparisons.txt"))
        rows.push_back(Divide(line, " | "));
    rows.front() = {"at least version", Repeat("9", 5000), "9", "unknown"};  // instead of the columns' names
    rows.push_back({"contains", "x" + Repeat("é", 2048), "é", "unknown"});
    rows.push_back({"contains", Repeat("é", 2048), "é", "pass"});
    for (const auto& [one, same] : {std::pair{"1 KB", "1024 B"},
                                    {"1 MB", "1024 KB"},
                                    {"1 GB", "1024 MB"},
                                    {"1 TB", "1024 GB"},
                                    {"1 KHz", "1000 Hz"},
                                    {"1 MHz", "1000 KHz"},
                                    {"1 GHz", "1000 MHz"},
                                    {"1 Kbps", "1024 bps"},
                                    {"1 Mbps", "1024 Kbps"},
                                    {"1 Gbps", "1024 Mbps"}}) {
        for (const char* comparison : {"at least", "at most"})
            rows.push_back({comparison, one, same, "pass"});
    }
    const std::map<std::string, SoldAs> kinds{{"Nothing", SoldAs::Nothing},
                                              {"Memory", SoldAs::Memory},
                                              {"GraphicsMemory", SoldAs::GraphicsMemory},
                                              {"Disk", SoldAs::Disk}};
    for (const Texts& row : rows) {
        // The comparison may be followed by what is sold, and the last column may have its nominal size.
        std::string name = row.at(0);
        const auto kind = kinds.find(name.substr(name.rfind(' ') + 1));
        const SoldAs soldAs = kind == kinds.end() ? SoldAs::Nothing : kind->second;
        if (kind != kinds.end())
            name.erase(name.rfind(' '));
        const Comparison* comparison = ParseComparison(name);
        ASSERT_TRUE(comparison) << row[0];
        EXPECT_EQ(ToString(Compare(*comparison, NormalizeValue(row.at(1)), row.at(2), soldAs)), row.at(3))
            << row[0] << " | " << row[1] << " | " << row[2];
        const auto nominal = FindNominalSize(ParseAmount(row[1]).value_or(Amount{}), soldAs);
        EXPECT_EQ(nominal ? nominal->text : "", row.size() > 4 ? row[4] : "") << row[0] << " | " << row[1];
    }
}

std::string DescribeFindings(const std::string& text)
{
    std::string found;
    for (const Finding& finding : CheckRequirements(text).findings)
        found.append(found.empty() ? "" : "; ")
            .append(finding.isError ? "error: " : "warning: ")
            .append(finding.text);
    return found;
}

TEST(RequirementsCheck, FindsWhatTheTableSays)
{
    for (const std::string& row : ReadLines("found.txt")) {
        const Texts cells = Divide(row, " | ");
        if (cells.size() < 2)
            continue;
        std::string lines = cells[0];
        for (std::size_t end; (end = lines.find('~')) != lines.npos;)
            lines[end] = '\n';
        EXPECT_EQ(DescribeFindings(SetOf("\n" + lines)), cells[1]) << cells[0];
    }
}

TEST(RequirementsCheck, FindsErrorsBehindAnyNumberOfWarnings)
{
    const std::string doubtful = R"({"id": 71063, "label": "L", "comparison": "any", "needed": "x"}, )";
    const std::string wrong = R"({"id": 1, "label": "L", "comparison": "any"})";
    EXPECT_EQ(CheckRequirements(SetOf(Repeat(doubtful, 100) + wrong)).ErrorText(),
              "line 1, requirement 101: unknown id 1: no machine has such a value");
}

TEST(ValueKinds, HaveExamplesThatTheirComparisonsCanRead)
{
    for (const CatalogueValue& value : CatalogueValues) {
        const ValueKind& kind = KindOf(value);
        const bool isAmount = kind.type != ValueType::Text && kind.type != ValueType::Version &&
                              kind.type != ValueType::YesNo && kind.type != ValueType::Resolution;
        if (isAmount) {
            EXPECT_EQ(
                ToString(Compare(*ParseComparison("at least"), NormalizeValue(kind.example), kind.example)),
                "pass")
                << value.id;
        }
        const bool isFree = kind.type == ValueType::Text && kind.choices[0] == 0;
        const std::string needed = isFree ? "x" : kind.example;
        if (value.Source() != NoSource && !isFree) {
            EXPECT_EQ(FindError({value.id, ParseComparison("equals"), needed}).reason.find("never hold"),
                      std::string::npos)
                << value.id << " " << needed;
        }
    }
}

using Values = std::map<std::pair<int, int>, std::string>;

/// Values as "71063[0]=7.8 GB; 72004[1]=128.0 MB".
void ReadValues(const std::string& text, Values& values)
{
    for (const std::string& entry : Divide(text, "; ")) {
        const std::size_t bracket = entry.find('['), equals = entry.find("]=");
        ASSERT_NE(equals, entry.npos) << entry;
        values[{std::stoi(entry), std::stoi(entry.substr(bracket + 1))}] = entry.substr(equals + 2);
    }
}

ValueLookup LookIn(const Values& values)
{
    return [&](int group, int index) -> std::optional<std::string> {
        const auto found = values.find({group, index});
        return found == values.end() ? std::nullopt : std::optional(found->second);
    };
}

TEST(Verdict, FollowsTheTableOfLines)
{
    for (const std::string& row : ReadLines("lines.txt")) {
        const Texts cells = Divide(row, " | ");
        if (!cells.at(0).starts_with("{"))
            continue;
        Values values;
        ReadValues(cells.at(1), values);
        const auto set = Requirements::Read(SetOf(R"({"label": "L", )" + cells[0].substr(1)));
        const VerdictLine line = Judge(set, LookIn(values)).lines.at(0);
        EXPECT_EQ(ToString(line.result), cells.at(4)) << row;
        EXPECT_EQ(line.found, cells.at(3) == "-" ? "" : cells[3]) << row;
        EXPECT_EQ(line.needed, cells.at(2)) << row;
    }
}

std::string ReadFile(const std::string& path)
{
    std::ifstream stream(test::TestFile(KEL_VERDICT_CASES) / path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// The table of the examples' sets: the set, a whole machine's file, additional values, and the results of
/// all lines.
TEST(Examples, JudgeTheWholeMachines)
{
    for (const std::string& row : ReadLines("examples.txt")) {
        const Texts cells = Divide(row, " | ");
        if (cells.at(0) == "set")
            continue;
        Values values;
        for (const std::string& line : Divide(ReadFile("../machines/" + cells.at(1) + ".txt"), "\n")) {
            if (line.starts_with("= "))
                ReadValues(line.substr(2), values);
        }
        if (cells.at(2) != "-")
            ReadValues(cells[2], values);
        const std::string text = ReadFile("../../examples/requirements/" + cells[0] + ".json");
        EXPECT_EQ(CheckRequirements(text).ErrorText(), "") << cells[0];
        const auto set = Requirements::Read(text);
        const Verdict verdict = Judge(set, LookIn(values));
        std::string results(ToString(verdict.total));
        for (const VerdictLine& line : verdict.lines)
            results.append("; ").append(line.label).append(": ").append(ToString(line.result));
        EXPECT_EQ(results, cells.at(3)) << cells[0] << " on " << cells[1];
    }
}

TEST(Verdict, JoinsAlternativesAndLeavesRecommendationsOut)
{
    const Texts lines = ReadLines("verdicts.txt");
    std::map<std::string, std::string> named;  // lines of requirements
    std::size_t number = 0;
    for (; !lines.at(number).empty(); ++number)
        named[lines[number].substr(0, lines[number].find(':'))] =
            lines[number].substr(lines[number].find('{'));
    const Texts columns = Divide(lines.at(++number), " | ");
    while (++number < lines.size()) {
        const Texts cells = Divide(lines[number], " | ");
        const auto lookup = [&](int group, int index) -> std::optional<std::string> {
            const std::string& value = cells.at(static_cast<std::size_t>(group - 1));
            return value == "-" || index != 0 ? std::nullopt : std::optional(value);
        };
        for (std::size_t column = 4; column < columns.size(); ++column) {
            std::string set;
            for (const std::string& name : Divide(columns[column], ", "))
                set += (set.empty() ? "" : ", ") + named.at(name);
            const Verdict verdict = Judge(Requirements::Read(SetOf(set)), lookup);
            std::string results(ToString(verdict.total));
            for (const VerdictLine& line : verdict.lines)
                results.append(" ").append(ToString(line.result));
            EXPECT_EQ(results, cells.at(column)) << columns[column] << ": " << lines[number];
            // The values of all alternatives; one that is asked for twice is shown once.
            const std::string& found = cells.at(columns[column].starts_with("either") ? 3 : 0);
            if (!columns[column].starts_with("advised")) {
                EXPECT_EQ(verdict.lines[0].found, found == "-" ? "" : found) << lines[number];
            }
        }
    }
}

TEST(Verdict, HasTextsInTheVisitorsLanguage)
{
    const auto set =
        Requirements::Read(R"({"title": {"fr": "Titre", "de": "Titel", "pt-BR": "Título"}, "requirements": [
        {"label": {"en": "L", "de": "Zeile"}, "id": 1, "comparison": "any", "needed text": "N", "advice": {"de": "R"}}]})");
    for (const auto& [header, title, label] : {std::tuple{"", "Titel", "L"},  // the first tag, and English
                                               {"de-CH, fr;q=0.9", "Titel", "Zeile"},
                                               {"de;q=0.8 , FR ;q=0.9,*;q=0.5", "Titre", "Zeile"},
                                               {"fr;q=0", "Titel", "L"},
                                               {"pt-br-x, en", "Título", "L"},
                                               {"pt, ;;, en;q=0.001, de;q=0.01", "Titel", "Zeile"}}) {
        const Verdict verdict = Judge(set, LookIn({}), ParseLanguages(header));
        EXPECT_EQ(verdict.title, title) << header;
        EXPECT_EQ(verdict.lines.at(0).label, label) << header;
        EXPECT_EQ(verdict.lines[0].ShownNeeded(), "N") << header;
        EXPECT_EQ(verdict.lines[0].advice, "R") << header;
    }
}

TEST(Verdict, TruncatesLongValuesBetweenCharacters)
{
    const std::string value = "x" + Repeat("é", 600);
    const auto set = Requirements::Read(SetOf(R"({"id": 1, "label": "L", "comparison": "any"})"));
    EXPECT_EQ(Judge(set, [&](int, int) { return value; }).lines.at(0).found, "x" + Repeat("é", 499) + "…");
}

TEST(Verdict, LooksAtABoundedNumberOfDevices)
{
    const auto set = Requirements::Read(
        SetOf(R"({"id": 1, "label": "L", "comparison": "contains", "needed": "device 100", "of": "any"})"));
    for (const auto& [first, result] : {std::pair{1, Result::Pass}, {0, Result::Fail}}) {
        const auto lookup = [first = first](int, int index) {
            return "device " + std::to_string(index + first) + Repeat("x", 900);
        };
        const VerdictLine line = Judge(set, lookup).lines.at(0);
        EXPECT_EQ(line.result, result) << "first device " << first;
        EXPECT_LT(line.found.size(), 1100U) << "first device " << first;
    }
}

TEST(Requirements, RejectWhatTheTableRejects)
{
    const std::string line = R"({"id": 1, "label": "", "comparison": "any"})";
    for (const std::string& row : ReadLines("refused.txt")) {
        const Texts cells = Divide(row, " | ");
        std::string text = cells.at(0);
        if (const std::size_t place = text.find("LONG"); place != text.npos)
            text.replace(place, 4, std::string(999, 'x'));
        const bool isWhole = text.find("\"requirements\"") != text.npos || text == "[]";
        EXPECT_EQ(ReasonAgainst(isWhole ? text : SetOf(line + ", " + text)), cells.at(1)) << cells[0];
    }
}

TEST(Requirements, EnforceTheirBounds)
{
    const std::string line = R"({"id": 1, "label": "", "comparison": "any"})",
                      condition = R"({"id": 2, "comparison": "any"})";
    const auto either = [&](int count) {
        return R"({"label": ")" + Repeat("é", 500) + R"(", "any of": [)" +
               Repeat(condition + ", ", count - 1) + condition + "]}";
    };
    std::string largest = SetOf(Repeat(line + ", ", 499) + either(20));
    largest.resize(1'048'576, ' ');
    const Requirements most = Requirements::Read(largest);
    EXPECT_EQ(most.lines.size(), 500U);
    EXPECT_EQ(most.Groups(), (std::vector{71424, 71218, 71206, 1, 2}));
    const std::string versions = R"({"label": "", "any of": [{"all of": [{"id": 73227, "comparison": "any"},
        {"id": 73226, "comparison": "yes"}]}, {"id": 73015, "comparison": "any"}]})";
    EXPECT_EQ(Requirements::Read(SetOf(versions)).Groups(),
              (std::vector{71424, 71218, 71206, 73227, 73226, 73015, 73014}))
        << "each version with what says whether it is installed";
    EXPECT_EQ(ReasonAgainst(SetOf(either(21))), "requirement 1: its 'any of' has 21 entries, not 1 to 20");
    EXPECT_EQ(ReasonAgainst(SetOf(Repeat(line + ", ", 500) + line)),
              "its 'requirements' has 501 entries, not 0 to 500");
    EXPECT_EQ(ReasonAgainst(std::string(1'048'577, ' ')), "it is longer than 1048576 bytes");
}

TEST(LowerCase, MapsLettersOfEveryScriptOneToOne)
{
    const std::pair<const char32_t*, const char32_t*> rows[] = {
        {U"@AZ[", U"@az["},           // right beside the letters
        {U"ÀÖ×ØÞß", U"àö×øþß"},       // a sign among letters; one without a lower-case form
        {U"ĀāĂıİŸ", U"āāăıi\u00FF"},  // alternating; forms before their letters
        {U"\u01C4\u01C5\u01C6", U"\u01C6\u01C6\u01C6"},  // with a title case
        {U"ΑΣΩςЀЯЖ", U"ασωςѐяж"},
        {U"\u13A0\u1E9E\u2126\u212A", U"\uAB70\u00DFωk"},  // far from their letters
        {U"\uFF21\uFF3A\U00010400\U00010428\U0001E921\U0010FFFF",
         U"\uFF41\uFF5A\U00010428\U00010428\U0001E943\U0010FFFF"},
    };
    for (const auto& [letters, expected] : rows) {
        for (std::size_t i = 0; letters[i] != 0; ++i)
            EXPECT_EQ(LowerCase(letters[i]), expected[i])
                << std::hex << static_cast<std::uint32_t>(letters[i]);
    }
    int mapped = 0;
    for (char32_t c = 0; c <= 0x10FFFF; ++c)
        mapped += LowerCase(c) != c ? 1 : 0;
    EXPECT_EQ(mapped, 1433) << "letters of Unicode 14 with a lower-case form";
}

}  // namespace
}  // namespace kel
