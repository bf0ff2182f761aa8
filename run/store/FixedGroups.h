// The groups that go into every report, whatever the service wants, and the one that goes into none.
#pragma once

namespace kel {

constexpr unsigned MachineIdentifierGroup = 71207;
constexpr unsigned Server2008Group = 71465;
constexpr unsigned Server2008R2Group = 71466;

constexpr bool IsInEveryReport(unsigned group)
{
    return group == MachineIdentifierGroup || group == Server2008Group || group == Server2008R2Group;
}

/// How the last exchange with the service ended, for the page alone.
constexpr unsigned ExchangeStateGroup = 73390;

}  // namespace kel
