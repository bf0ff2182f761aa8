#include "program/VerdictText.h"

#include <algorithm>
#include <exception>

#include "program/FactTable.h"
#include "program/files/File.h"
#include "program/text/Characters.h"
#include "program/text/Table.h"
#include "program/text/UserError.h"
#include "verdict/Catalogue.h"

namespace kel::program {

namespace {

Colour ColourOf(Result result)
{
    return result == Result::Pass ? Colour::Good : result == Result::Fail ? Colour::Bad : Colour::Unsure;
}

std::string Label(const VerdictLine& line)
{
    return line.label + (line.recommended ? " (recommended)" : "");
}

/// Why a value is empty, as far as the snapshot shows it.
std::string FindReason(const Fact* fact, int group, const Snapshot& snapshot)
{
    const CatalogueValue* known = FindCatalogueValue(group);
    if (known != nullptr && known->existence != 0 && snapshot.Text(known->existence) == "No")
        return "not installed";
    if (fact == nullptr)
        return "it is not among the values";
    return fact->reason.empty() ? "the reason is not known" : fact->reason;
}

/// A line about a value that is empty; empty when it is not.
std::string ReasonFor(int group, const Snapshot& snapshot)
{
    const Fact* fact = snapshot.Find(group);
    if (fact != nullptr && !fact->text.empty())
        return "";
    return NameOf(fact != nullptr ? *fact : Fact{group, 0, "", ""}) + " (" + std::to_string(group) +
           "): " + FindReason(fact, group, snapshot);
}

}  // namespace

Requirements ReadRequirements(const std::string& path)
{
    try {
        return Requirements::Read(ReadFile(path, Requirements::MaxFile));
    } catch (const std::exception& error) {
        throw UserError(path + ": " + Printable(error.what()));
    }
}

void WriteVerdict(Output& output, const Verdict& verdict)
{
    output.WriteLine(Printable(verdict.title), Colour::Strong);
    output.WriteLine();
    Table table({"Requirement", "Needed", "Found", "Result"});
    Table advice({"", ""});
    for (const VerdictLine& line : verdict.lines) {
        table.AddRow({{Label(line)},
                      {line.ShownNeeded()},
                      {line.found.empty() ? "–" : line.found},
                      {std::string(ToString(line.result)), ColourOf(line.result)}});
        if (line.result != Result::Pass && !line.advice.empty())
            advice.AddRow({{line.label + ":"}, {line.advice}});
    }
    table.Write(output);
    if (!advice.IsEmpty()) {
        output.WriteLine();
        output.WriteLine("What can be done", Colour::Strong);
        advice.Write(output, 2);
    }
    output.WriteLine();
    output.Write("Total: ");
    output.WriteLine(ToString(verdict.total), ColourOf(verdict.total));
}

void WriteReasons(Output& output, const Requirements& requirements, const Verdict& verdict,
                  const Snapshot& snapshot)
{
    Table table({"", ""});
    for (std::size_t place = 0; place < std::min(requirements.lines.size(), verdict.lines.size()); ++place) {
        if (verdict.lines[place].result == Result::Pass)
            continue;
        for (const int group : requirements.lines[place].Groups()) {
            if (const std::string reason = ReasonFor(group, snapshot); !reason.empty())
                table.AddRow({{verdict.lines[place].label + ":"}, {reason}});
        }
    }
    if (table.IsEmpty())
        return;
    output.WriteLine();
    output.WriteLine("Empty values", Colour::Strong);
    table.Write(output, 2);
}

}  // namespace kel::program
