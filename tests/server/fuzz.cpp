// Hostile texts for each parser of the analysis service, and for what judges and tells what was read. The
// same for the same KEL_FUZZ_SEED; KEL_FUZZ_COUNT of them for each.
#include <algorithm>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>

#include "fuzz/Generator.h"
#include "server/base/Text.h"
#include "server/http/Target.h"
#include "server/protocol/AnalysisRequest.h"
#include "server/report/Xml.h"
#include "server/verdict/PageStyle.h"
#include "server/verdict/Rendering.h"
#include "server/verdict/Tally.h"

namespace kel::server {
namespace {

using test::Narrow, test::Text, test::Texts, test::Wide;

std::map<std::string, Texts> samples;  // by the name of their parser

void Expect(bool holds, const char* what)
{
    if (!holds)
        throw std::logic_error(what);
}

/// Nothing when the text is refused with a reason that can be shown; any other exception is a fault.
template <typename Read>
auto TryRead(Read read, std::string_view text) -> std::optional<decltype(read(text))>
{
    try {
        return read(text);
    } catch (const std::runtime_error& error) {
        const std::string_view reason = error.what();
        Expect(!reason.empty() && reason.size() < 500 && IsXmlText(reason), "a reason that can be shown");
        return std::nullopt;
    }
}

/// One that the generator may change no more, picked by the text that is tried.
template <typename Read>
const auto& Partner(const char* name, Read read, const std::string& text)
{
    static std::vector<decltype(read(text))> partners;
    for (std::size_t i = partners.size(); i < samples[name].size(); ++i)
        partners.push_back(read(Narrow(samples[name][i])));
    return partners[text.size() % partners.size()];
}

std::string Encoded(const std::string& text)
{
    std::string encoded;
    for (const char c : text)
        encoded.append({'%', "0123456789abcdef"[c >> 4 & 15], "0123456789abcdef"[c & 15]});
    return encoded;
}

/// As an XML parser hands a text on: with its own line ends, and in attributes with blanks in their place.
std::string Handed(const std::string& text, bool isAttribute = false)
{
    std::string handed;
    for (const char c : text) {
        if (c != '\n' || !handed.ends_with('\r'))
            handed += c;
    }
    std::ranges::replace(handed, '\r', '\n');
    if (isAttribute)
        std::ranges::replace_if(
            handed, [](char c) { return c == '\n' || c == '\t'; }, ' ');
    return handed;
}

std::vector<std::ptrdiff_t> Markup(std::string page)
{
    page.erase(page.find(PageStyle), std::string_view(PageStyle).size());
    std::vector<std::ptrdiff_t> counts;
    for (const char c : {'<', '>', '"', '\''})
        counts.push_back(std::ranges::count(page, c));
    return counts;
}

/// A verdict tells in each form what it has, and no text of it becomes markup.
void TellsWhatItHas(const Verdict& verdict, const AnalysisRequest& request = {})
{
    const auto document = ReadXml(RenderXml(verdict, request.item, request.schema));
    const auto root = document.document_element(), title = root.first_child();
    Expect(root.attribute("item").value() == Handed(request.item, true), "its item");
    Expect(root.attribute("schema").value() == Handed(request.schema, true), "its schema");
    Expect(title.child_value() == Handed(verdict.title), "its title");
    Verdict plain = verdict;
    plain.title.clear();
    const auto json =
        nlohmann::json::parse(RenderJson(verdict, request.item, request.schema)).at("requirements");
    auto node = title;
    for (std::size_t i = 0; i < verdict.lines.size(); ++i) {
        const VerdictLine& line = verdict.lines[i];
        node = node.next_sibling();
        std::vector<std::string> told, expected{line.label, line.needed, line.found};
        if (!line.advice.empty())
            expected.push_back(line.advice);
        if (line.recommended)
            expected.emplace_back();
        for (const pugi::xml_node& child : node.children())
            told.emplace_back(child.child_value());
        Expect(
            std::ranges::equal(told, expected, {}, {}, [](const std::string& text) { return Handed(text); }),
            "its line");
        Expect(json.at(i).at("found") == line.found && json.at(i).at("label") == line.label,
               "its line in JSON");
        plain.lines[i].label = plain.lines[i].needed = plain.lines[i].found = "x";
        plain.lines[i].advice = line.advice.empty() ? "" : "x";
    }
    Expect(!node.next_sibling() && json.size() == verdict.lines.size(), "its lines and no more");
    Expect(Markup(RenderPage(verdict)) == Markup(RenderPage(plain)), "a page without markup of its texts");
    Expect(nlohmann::json::parse(RenderLines(verdict)).size() == verdict.lines.size(),
           "its lines as they are kept");
}

void Judges(Requirements requirements, const Report& report)
{
    const Verdict verdict = Judge(requirements, report);
    TellsWhatItHas(verdict);
    Tally tally;
    tally.Count(verdict);
    std::erase_if(requirements.lines, [](const Requirement& line) { return line.recommended; });
    const Verdict binding = Judge(requirements, report);
    Expect(binding.total == verdict.total, "recommendations without a say");
    const bool isOther = binding.lines.size() != verdict.lines.size();
    try {
        tally.Count(binding);
        Expect(!isOther, "a tally by one set of requirements");
    } catch (const std::invalid_argument&) {
        Expect(isOther, "a tally of a second verdict");
    }
    for (const LineTally& line : tally.lines)
        Expect(line.pass + line.fail + line.unknown == tally.pass + tally.fail + tally.unknown,
               "lines as totals");
}

bool TryTarget(const std::string& text)
{
    const auto target = Target::Read(text);
    if (!target)
        return false;
    std::string again = "/" + Encoded(target->path.substr(1)) + "?";
    for (const auto& [name, value] : target->query) {
        again += Encoded(name) + "=" + Encoded(value) + "&";
        const auto times = std::ranges::count(target->query, name, &Target::Parameter::name);
        Expect(target->Only(name).has_value() == (times == 1), "a parameter that stands there once");
    }
    const auto second = Target::Read(again);
    const auto same = [](const auto& a, const auto& b) { return a.name == b.name && a.value == b.value; };
    Expect(second && second->path == target->path && std::ranges::equal(second->query, target->query, same),
           "the same target, encoded");
    return true;
}

bool TryReport(const std::string& text)
{
    const Requirements& requirements = Partner("requirements", Requirements::Read, text);
    const auto report = TryRead(Report::Read, text);
    if (report) {
        Expect(!report->Text(Report::Session).empty(), "a session");
        Judges(requirements, *report);
    }
    if (text.size() % 2 == 0 && IsXmlText(text)) {  // half of them, for the time that it takes
        const Report with =
            Report::Read("<groups><group id='71424'><value>s</value></group><group id='1'><value>" +
                         Escape(text) + "</value></group></groups>");
        Expect(with.Text(1) == Handed(text), "a value as it was sent");
        Judges(requirements, with);
    }
    return report.has_value();
}

bool TryRequest(const std::string& text)
{
    const auto request = TryRead(AnalysisRequest::Read, text);
    if (request)
        TellsWhatItHas({}, *request);
    return request.has_value();
}

bool TryRequirements(const std::string& text)
{
    const auto requirements = TryRead(Requirements::Read, text);
    if (requirements)
        Judges(*requirements, Partner("report", Report::Read, text));
    return requirements.has_value();
}

/// Rows of a table: a comparison, what was found, and what is needed.
bool TryComparison(const std::string& text)
{
    const std::size_t first = text.find(" | "), second = text.find(" | ", first + 1);
    const auto comparison = ComparisonOf(text.substr(0, first));
    if (second == text.npos || !comparison)
        return false;
    const std::string found = text.substr(first + 3, second - first - 3);
    const std::string needed = text.substr(second + 3, text.find(" | ", second + 1) - second - 3);
    std::string loud = "\t" + found + " ";
    std::ranges::transform(loud, loud.begin(),
                           [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    const Result result = Compare(*comparison, &found, needed);
    Expect(Compare(*comparison, &loud, needed) == result, "no regard to case and blanks");
    const auto bare = Trim(loud);
    const bool isNumber = !bare.empty() && bare.front() >= '0' && bare.front() <= '9',
               isAnswer = bare == "YES" || bare == "NO";
    const std::map<Comparison, bool> readable{
        {Comparison::AtLeast, isNumber},        {Comparison::AtMost, isNumber}, {Comparison::Any, false},
        {Comparison::AtLeastVersion, isNumber}, {Comparison::Yes, isAnswer},    {Comparison::No, isAnswer}};
    const auto form = readable.find(*comparison);
    Expect(result != Result::Fail || (form == readable.end() ? !bare.empty() : form->second),
           "what cannot be read never fails");
    const bool isOfWords =
        *comparison == Comparison::OneOf || *comparison == Comparison::Yes || *comparison == Comparison::No;
    if (!isOfWords && !Trim(needed).empty() && WhyNeverMet(*comparison, needed).empty())
        Expect(Compare(*comparison, &needed, needed) == Result::Pass, "what is needed is enough");
    return true;
}

struct Parser {
    const char* name;
    bool (*tries)(const std::string& text);  ///< whether the text is accepted
};

constexpr Parser Parsers[] = {{"target", TryTarget},
                              {"report", TryReport},
                              {"request", TryRequest},
                              {"requirements", TryRequirements},
                              {"comparison", TryComparison}};

void ReadSamples(const std::string& file, const std::string& name)
{
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t blank = name.empty() ? line.find(' ') : 0;
        samples[name.empty() ? line.substr(0, blank) : name].push_back(
            Wide(line.substr(name.empty() ? blank + 1 : 0)));
    }
}

/// Whether all texts of a parser went well, and some were accepted.
bool Runs(const Parser& parser)
{
    const std::uint64_t seed = test::Setting("KEL_FUZZ_SEED", 71060),
                        count = test::Setting("KEL_FUZZ_COUNT", 200'000);
    test::Generator generator{std::mt19937_64(seed), samples[parser.name], {}};
    for (const Text& sample : generator.samples)
        std::ranges::copy(test::All(sample, L"(</?\\w+>?|\\w+| *[^\\w;] *)"),
                          std::back_inserter(generator.pieces));
    std::uint64_t accepted = 0;
    for (std::uint64_t number = 1; number <= count; ++number) {
        const std::string text = Narrow(generator.Next());
        try {
            accepted += parser.tries(text) ? 1 : 0;
        } catch (const std::exception& error) {
            std::cout << parser.name << ", seed " << seed << ", text " << number << ": " << error.what()
                      << "\n"
                      << text << "\n";
            return false;
        }
    }
    std::cout << parser.name << ": " << count << " texts of seed " << seed << ", accepted " << accepted
              << std::endl;
    return accepted > count / 20;
}

}  // namespace
}  // namespace kel::server

/// Less for the sanitizer to remember, in half of the time.
extern "C" const char* __asan_default_options()
{
    return "malloc_context_size=2:quarantine_size_mb=8";
}

int main()
{
    kel::server::ReadSamples(KEL_TESTS "/server/corpus.txt", "");
    kel::server::ReadSamples(KEL_TESTS "/end_to_end/comparisons.txt", "comparison");
    return std::ranges::count_if(kel::server::Parsers, std::not_fn(kel::server::Runs)) == 0 ? 0 : 1;
}
