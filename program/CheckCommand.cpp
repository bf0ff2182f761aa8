#include <optional>
#include <vector>

#include "program/Commands.h"
#include "program/VerdictText.h"
#include "program/files/File.h"
#include "program/machine/Machine.h"
#include "program/text/Output.h"
#include "service/ServiceHost.h"
#include "service/Utf8.h"
#include "verdict/Rendering.h"

namespace kel::program {

Snapshot JudgeMachine(const Options& options, std::optional<Requirements>& requirements)
{
    if (!options.service.empty())
        SetServiceHost(FromUtf8(options.service));
    if (options.requirements.empty())
        return CheckByService(options.product);
    requirements = ReadRequirements(options.requirements);
    std::vector<unsigned> groups;
    for (const int group : requirements->Groups()) {
        if (!UsesNetwork(group))  // nothing may leave the machine
            groups.push_back(static_cast<unsigned>(group));
    }
    Snapshot snapshot = ReadMachine(groups);
    snapshot.verdict = Judge(*requirements, snapshot.Lookup());
    return snapshot;
}

int CheckMachine(const Options& options)
{
    std::optional<Requirements> requirements;
    const Snapshot snapshot = JudgeMachine(options, requirements);
    const Verdict& verdict = *snapshot.verdict;
    Output& output = Output::Standard();
    if (!options.html.empty())
        WriteFile(options.html, RenderPage(verdict));
    if (options.asJson) {
        output.Write(RenderJson(verdict, "requirements", "1.0") + "\n");
    } else {
        WriteVerdict(output, verdict);
        if (requirements)
            WriteReasons(output, *requirements, verdict, snapshot);
    }
    return ToExitCode(verdict.total);
}

}  // namespace kel::program
