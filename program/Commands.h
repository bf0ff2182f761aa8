// The commands, each a function of the options that returns the program's exit code.
#pragma once

#include <optional>

#include "program/CommandLine.h"
#include "verdict/Requirements.h"
#include "verdict/Result.h"
#include "verdict/files/Snapshot.h"

namespace kel::program {

inline constexpr int WrongUse = 3;

/// The exit code of a verdict.
inline int ToExitCode(Result result)
{
    return result == Result::Pass ? 0 : result == Result::Fail ? 1 : 2;
}

/// Reads this machine and judges it, by the file of requirements that the options name, or by the service.
/// @param requirements what the file has; nothing when the service judges
/// @throws UserError, as all of the following
Snapshot JudgeMachine(const Options& options, std::optional<Requirements>& requirements);

int ShowFacts(const Options& options);
int CheckMachine(const Options& options);
int WriteReport(const Options& options);
int ExplainFile(const Options& options);
int CompareFiles(const Options& options);

/// Answers a browser's extension until the input ends, which ends the process.
int ServeBrowser(const Options& options);

/// Serves the control to programs of any width as the class's local server, until none needs it any more.
int ServeHosts();

/// Registers this program as the class's local server for all users, beside a registration of the DLL.
int RegisterServer();
int UnregisterServer();

}  // namespace kel::program
