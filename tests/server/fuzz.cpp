// Hostile texts for each parser of the analysis service, and for the verdicts and pages made from what was
// read. The same KEL_FUZZ_SEED gives the same texts; KEL_FUZZ_COUNT is their number for each parser.
#include <algorithm>
#include <fstream>
#include <functional>
#include <initializer_list>
#include <iostream>
#include <nlohmann/json.hpp>

#include "fuzz/Generator.h"
#include "server/admin/kit/Form.h"
#include "server/admin/kit/Html.h"
#include "server/http/Target.h"
#include "server/protocol/AnalysisRequest.h"
#include "server/report/Characters.h"
#include "server/report/Report.h"
#include "server/report/ReportFile.h"
#include "server/report/Xml.h"
#include "verdict/PageStyle.h"
#include "verdict/Rendering.h"
#include "verdict/RequirementsCheck.h"
#include "verdict/Tally.h"
#include "verdict/text/Csv.h"
#include "verdict/text/Text.h"
#include "verdict/text/Utf8.h"

namespace kel::server {
namespace {

std::map<std::string, test::Texts> samples;  // by the name of their parser

void Expect(bool holds, const char* what)
{
    if (!holds)
        throw std::logic_error(what);
}

std::string Encoded(const std::string& text)
{
    std::string encoded;
    for (const char c : text)
        encoded.append({'%', "0123456789abcdef"[c >> 4 & 15], "0123456789abcdef"[c & 15]});
    return encoded;
}

/// The text without line ends, which XML parsers normalize.
std::string Handed(std::string text)
{
    std::erase_if(text, [](char c) { return c == '\r' || c == '\n'; });
    return text;
}

std::ptrdiff_t Markup(std::string page)
{
    page.erase(page.find(PageStyle), std::string_view(PageStyle).size());
    return std::ranges::count_if(page, [](char c) { return c == '<' || c == '>' || c == '"' || c == '\''; });
}

/// Each form of a verdict shows its contents, and no text in it becomes markup.
void ShowsWhatItHas(const Verdict& verdict, const AnalysisRequest& request = {})
{
    std::vector<std::string> shown, expected{verdict.title};
    Verdict plain = verdict;
    plain.title.clear();
    for (VerdictLine& line : plain.lines) {
        expected.insert(expected.end(), {line.label, line.needed, line.found});
        expected.insert(expected.end(), line.advice.empty() ? 0 : 1, line.advice);
        expected.insert(expected.end(), line.recommended ? 1 : 0, "");
        expected.insert(expected.end(), line.neededText.empty() ? 0 : 1, line.neededText);
        line.neededText.resize(std::min<std::size_t>(line.neededText.size(), 1), 'x');
        line.label = line.needed = line.found = "x";
        line.advice.resize(std::min<std::size_t>(line.advice.size(), 1), 'x');
    }
    const auto document = ReadXml(RenderXml(verdict, request.item, request.schema));
    for (const auto& element : document.select_nodes("/analysis/title | /analysis/requirement/*"))
        shown.emplace_back(element.node().child_value());
    Expect(std::ranges::equal(shown, expected, {}, Handed, Handed), "texts that arrive");
    Expect(document.select_nodes("//*").size() == shown.size() + verdict.lines.size() + 1,
           "no more elements");
    Expect(Markup(RenderPage(verdict)) == Markup(RenderPage(plain)), "no markup of texts");
    const auto json = nlohmann::json::parse(RenderJson(verdict, request.item, request.schema));
    Expect(json.at("requirements").size() == nlohmann::json::parse(RenderLines(verdict)).size(), "JSON");
}

void Judges(Requirements requirements, const Report& report)
{
    const Verdict verdict = Judge(requirements, report.Lookup());
    ShowsWhatItHas(verdict);
    Tally tally(requirements);
    tally.Count(JudgeResults(requirements, report.Lookup()));
    tally.Count(JudgeResults(requirements, report.Lookup()));
    const auto of = [](const Counts& counts, Result result) {
        return result == Result::Pass ? counts.pass : result == Result::Fail ? counts.fail : counts.unknown;
    };
    Expect(of(tally, verdict.total) == 2, "a tally of the total");
    for (std::size_t i = 0; i < verdict.lines.size(); ++i)
        Expect(of(tally.lines[i], verdict.lines[i].result) == 2, "a tally of each line");
    std::erase_if(requirements.lines, [](const Requirement& line) { return line.recommended; });
    Expect(Judge(requirements, report.Lookup()).total == verdict.total, "recommendations without a say");
}

// Each reads a text, and returns a check of what has to hold. A text is refused by throwing.
using Check = std::function<void()>;

Check ReadTarget(std::string_view text)
{
    const auto target = Target::Read(text);
    if (!target)
        return {};
    return [target] {
        std::string again = "/" + Encoded(target->path.substr(1)) + "?";
        for (const Target::Parameter& parameter : target->query)
            again += Encoded(parameter.name) + "=" + Encoded(parameter.value) + "&";
        const auto second = Target::Read(again);
        const auto same = [&](const auto& a, const auto& b) {
            return a.name == b.name && a.value == b.value;
        };
        Expect(second->path == target->path && std::ranges::equal(second->query, target->query, same),
               "the same encoded");
    };
}

/// The text as a report, or else as a value of one.
Check ReadReport(std::string_view text)
{
    static const auto requirements = Requirements::Read(test::Narrow(samples["requirements"][1]));
    std::string clean(text);
    ReplaceForbiddenCharacters(clean);
    Expect(ReplaceForbiddenCharacters(clean) == 0, "no character left to replace");
    const bool isValue = text.size() % 3 == 0 && IsXmlText(text);
    const std::string whole = "<groups><group id='71424'><value>s</value></group><group id='1'><value>" +
                              Escape(text) + "</value></group></groups>";
    const std::string& sent = isValue ? whole : clean;
    return [report = Report::Read(sent), stored = Report::ReadStored(sent), isValue, text] {
        Expect(stored && stored->All() == report.All(), "the same values once it is stored");
        Expect(!report.Text(Report::Session).empty(), "a session");
        Expect(!isValue || Handed(report.Text(1)) == Handed(std::string(text)), "a value as it was sent");
        Judges(requirements, report);
    };
}

Check ReadRequest(std::string_view text)
{
    return [request = AnalysisRequest::Read(text)] { ShowsWhatItHas({}, request); };
}

Check ReadRequirements(std::string_view text)
{
    static const Report report = Report::Read(test::Narrow(samples["report"][1]));
    CheckRequirements(text);
    FindListEnd(text, "requirements");
    return [requirements = Requirements::Read(text)] { Judges(requirements, report); };
}

/// Rows of a table: a comparison, what was found, and what is needed.
Check ReadComparison(std::string_view text)
{
    const std::size_t first = text.find(" | "), second = text.find(" | ", first + 1);
    const auto comparison = ParseComparison(text.substr(0, first));
    if (second == text.npos || !comparison)
        return {};
    return [=, found = std::string(text.substr(first + 3, second - first - 3))] {
        const std::string needed(text.substr(second + 3));
        const std::string bare = NormalizeValue(found);
        const auto isAmong = [name = comparison->name](std::initializer_list<std::string_view> names) {
            return std::ranges::find(names, name) != names.end();
        };
        Expect(Compare(*comparison, bare, needed) != Result::Fail ||
                   (isAmong({"yes", "no"})                                 ? bare == "yes" || bare == "no"
                    : isAmong({"equals", "one of", "none of", "contains"}) ? !bare.empty()
                                                                           : std::isdigit(bare[0]) != 0),
               "what cannot be read never fails");
        if (!isAmong({"any", "yes", "no", "one of", "none of"}) &&
            comparison->unsatisfiableReason(needed).empty())
            Expect(Compare(*comparison, NormalizeValue(needed), needed) == Result::Pass,
                   "what is needed is enough");
    };
}

/// A file of a machine's values: what was read is kept as a report, and read again.
Check ReadFile(std::string_view text)
{
    return [snapshot = ReadReportFile(text)] {
        const std::string report = WriteReport(snapshot);
        const Report again = Report::ReadValues(report);
        Expect(again.Count() <= snapshot.facts.size(), "no more values");
        for (const auto& [key, value] : again.All()) {
            const auto found = snapshot.Lookup()(std::stoi(key.first), static_cast<int>(key.second));
            Expect(found && Handed(*found) == Handed(value), "a value as it was kept");
        }
    };
}

/// A form's fields: as shown, as exported, and as searched for the line of a fault.
Check CheckForm(const std::optional<Form>& form)
{
    if (!form)
        return {};
    return [form] {
        for (const char* name : {"text", "name", "do"}) {
            const std::string& value = form->Text(name);
            Expect(IsXmlText(value) && Clean(value) == value && value.find('\r') == value.npos,
                   "a text that shows");
            Expect(Html(value).Markup().find_first_of("<>\"'") == std::string::npos, "no markup");
            const std::string cell = CsvRecord({value});
            Expect(std::ranges::count(cell, '"') % 2 == 0 && std::string_view("=+-@").find(cell[1]) > 3,
                   "a cell");
            const auto found = CheckRequirements(value).findings;
            Expect(std::ranges::all_of(found,
                                       [&](const Finding& finding) {
                                           return finding.line <= 1 + std::ranges::count(value, '\n');
                                       }),
                   "lines of the text");
        }
    };
}

Check ReadForm(std::string_view text)
{
    return CheckForm(Form::Read(text));
}

/// The same of a body with parts, in which ~ stands for a line end.
Check ReadMultipart(std::string_view text)
{
    std::string body;
    for (const char c : text)
        body += c == '~' ? std::string("\r\n") : std::string(1, c);
    const std::vector<char> bytes(body.begin(), body.end());
    return CheckForm(Form::Read({bytes.data(), bytes.size()}, "multipart/form-data; boundary=x"));
}

/// Whether all texts of a parser passed, and enough of them were accepted.
bool Runs(const std::string& name, Check (*read)(std::string_view))
{
    const std::uint64_t seed = test::Setting("KEL_FUZZ_SEED", 71060),
                        count = test::Setting("KEL_FUZZ_COUNT", 200'000);
    test::Generator generator{std::mt19937_64(seed), samples[name], {}};
    for (const test::Text& sample : generator.samples)
        std::ranges::copy(test::All(sample, L"(</?\\w+>?|\\w+| *[^\\w;] *)"),
                          std::back_inserter(generator.pieces));
    std::uint64_t accepted = 0;
    for (std::uint64_t number = 1; number <= count; ++number) {
        const std::string text = test::Narrow(generator.Next());
        const std::vector<char> bytes(text.begin(), text.end());  // and nothing behind them
        try {
            Check check;
            try {
                check = read({bytes.data(), bytes.size()});
            } catch (const std::runtime_error& error) {
                const std::string_view reason = error.what();
                Expect(!reason.empty() && reason.size() < 500 && IsXmlText(reason),
                       "a reason that can be shown");
            }
            accepted += check ? 1 : 0;
            if (check)
                check();
        } catch (const std::exception& error) {
            std::cout << name << ", seed " << seed << ", text " << number << ": " << error.what() << "\n"
                      << text << "\n";
            return false;
        }
    }
    std::cout << name << ": " << count << " texts of seed " << seed << ", accepted " << accepted << std::endl;
    return accepted > count / 20;
}

}  // namespace
}  // namespace kel::server

int main()
{
    using namespace kel::server;
    std::ifstream lines(KEL_CORPUS);
    for (std::string name, text; lines >> name >> std::ws && std::getline(lines, text);)
        samples[name].push_back(kel::test::Wide(text));
    return Runs("target", ReadTarget) && Runs("report", ReadReport) && Runs("request", ReadRequest) &&
                   Runs("requirements", ReadRequirements) && Runs("comparison", ReadComparison) &&
                   Runs("form", ReadForm) && Runs("file", ReadFile) && Runs("multipart", ReadMultipart)
               ? 0
               : 1;
}
