#include <algorithm>
#include <optional>

#include "diag/Log.h"
#include "masking/Masker.h"
#include "program/Commands.h"
#include "program/VerdictText.h"
#include "program/files/File.h"
#include "program/machine/Machine.h"
#include "program/text/Output.h"
#include "program/text/Table.h"
#include "run/LogStart.h"
#include "service/Utf8.h"
#include "verdict/files/SupportFile.h"

namespace kel::program {

namespace {

/// The log of the process without what identifies a person or a device.
std::string MaskedLog(const Snapshot& snapshot)
{
    Masker masker = Masker::OfSystem();
    for (const Fact& fact : snapshot.facts)
        masker.Keep(FromUtf8(fact.text));  // versions look like addresses
    return ToUtf8(masker.Mask(Log::Instance().GetText()));
}

/// Lists what goes into the file, so that the user knows before it exists.
void ListContent(const Snapshot& snapshot, const std::string& path)
{
    const auto isEmpty = [](const Fact& fact) { return fact.text.empty(); };
    const auto empty = std::count_if(snapshot.facts.begin(), snapshot.facts.end(), isEmpty);
    Table table({"", ""});
    table.AddRow({{"time"}, {snapshot.time}});
    table.AddRow({{"version"}, {snapshot.version}});
    table.AddRow({{"windows"}, {snapshot.windows}});
    table.AddRow({{"host"}, {snapshot.host}});
    table.AddRow({{"values"},
                  {std::to_string(snapshot.facts.size()) + ", " + std::to_string(empty) +
                   " of them empty; \"kel facts --why\" shows them"}});
    const auto lines = std::count(snapshot.log.begin(), snapshot.log.end(), '\n');
    table.AddRow(
        {{"log"},
         {std::to_string(lines) + " lines of what was read from where, with markers in the place of serial "
                                  "numbers, addresses, and names of people and machines"}});
    if (snapshot.verdict)
        table.AddRow(
            {{"verdict"}, {snapshot.verdict->title + ": " + std::string(ToString(snapshot.verdict->total))}});
    Output& output = Output::Standard();
    output.WriteLine(path + " holds:", Colour::Strong);
    table.Write(output, 2);
    output.Flush();
}

}  // namespace

int WriteReport(const Options& options)
{
    SetLogLevel(LogMaximum);
    std::optional<Requirements> requirements;
    const bool isJudged = !options.product.empty() || !options.requirements.empty();
    Snapshot snapshot = isJudged ? JudgeMachine(options, requirements) : ReadMachine(AllGroups());
    snapshot.log = MaskedLog(snapshot);
    ListContent(snapshot, options.files.front());
    WriteFile(options.files.front(), WriteSupportFile(snapshot));
    return 0;
}

}  // namespace kel::program
