// The groups that go into every report, whatever the service wants.
#pragma once

namespace kel {

constexpr unsigned MachineIdentifierGroup = 71207;
constexpr unsigned Server2008Group = 71465;
constexpr unsigned Server2008R2Group = 71466;

}  // namespace kel
