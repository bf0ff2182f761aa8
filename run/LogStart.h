#pragma once

namespace kel {

/// Sets the level of the log. The first time that it writes anything, two lines of the process come first,
/// whatever the level is: its date, its program, and this module's version and path; the service's host and
/// where it comes from. A line for each policy that was ignored follows. With a log file by policy, the level
/// is at least the policy's.
void SetLogLevel(int level);

/// Starts the log file where the machine's policy names one. Every program and the control call this first.
void StartLogFile() noexcept;

/// Gives the log file a moment to write the lines so far; never more than 50 milliseconds. Nothing without a
/// log file.
void FlushLogFile() noexcept;

}  // namespace kel
