#include <optional>

#include "program/Commands.h"
#include "program/FactTable.h"
#include "program/VerdictText.h"
#include "program/files/ReadSnapshot.h"
#include "program/text/Characters.h"
#include "program/text/Output.h"
#include "program/text/Table.h"
#include "program/text/UserError.h"
#include "verdict/Rendering.h"

namespace kel::program {

namespace {

void WriteOrigin(Output& output, const Snapshot& snapshot)
{
    Table table({"", ""});
    for (const auto& [name, text] :
         {std::pair("time", &snapshot.time), std::pair("version", &snapshot.version),
          std::pair("windows", &snapshot.windows), std::pair("host", &snapshot.host),
          std::pair("product", &snapshot.product)}) {
        if (!text->empty())
            table.AddRow({{name}, {*text}});
    }
    if (table.IsEmpty())
        return;
    output.WriteLine("file", Colour::Strong);
    table.Write(output, 2);
}

}  // namespace

int ExplainFile(const Options& options)
{
    Snapshot snapshot = ReadSnapshotFile(options.files.front());
    std::optional<Requirements> requirements;
    if (!options.requirements.empty()) {
        requirements = ReadRequirements(options.requirements);
        snapshot.verdict = Judge(*requirements, snapshot.Lookup());
    }
    Output& output = Output::Standard();
    const int code = snapshot.verdict ? ToExitCode(snapshot.verdict->total) : 0;
    if (options.asJson) {
        if (!snapshot.verdict)
            throw UserError("The file has no verdict. Name a file of requirements with --requirements.");
        output.Write(RenderJson(*snapshot.verdict, "requirements", "1.0") + "\n");
        return code;
    }
    WriteOrigin(output, snapshot);
    WriteFacts(output, snapshot, true);
    if (snapshot.verdict) {
        output.WriteLine();
        WriteVerdict(output, *snapshot.verdict);
    }
    if (requirements)
        WriteReasons(output, *requirements, *snapshot.verdict, snapshot);
    return code;
}

}  // namespace kel::program
