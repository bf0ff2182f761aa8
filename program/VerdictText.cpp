#include "program/VerdictText.h"

#include <exception>

#include "program/files/File.h"
#include "program/text/Characters.h"
#include "program/text/Table.h"
#include "program/text/UserError.h"
#include "verdict/files/EmptyValues.h"

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
    for (const EmptyValue& value : FindEmptyValues(requirements, verdict, snapshot))
        table.AddRow({{value.label + ":"}, {value.Text()}});
    if (table.IsEmpty())
        return;
    output.WriteLine();
    output.WriteLine("Empty values", Colour::Strong);
    table.Write(output, 2);
}

}  // namespace kel::program
