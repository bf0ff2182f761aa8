// The value ids of the operating system that are stored one by one; the version's numbers have a table.
#pragma once

#include "run/store/FixedGroups.h"

namespace kel::OSIds {

constexpr unsigned DisplayNameId = 71060;
constexpr unsigned MachineId = MachineIdentifierGroup;
constexpr unsigned DotNetId = 71193;

constexpr unsigned Windows2000Id = 71262;
constexpr unsigned Server2003Id = 71263;
constexpr unsigned Is64BitId = 71264;
constexpr unsigned ItaniumId = 71360;
constexpr unsigned X64Id = 71361;
constexpr unsigned WindowsXPId = 71276;
constexpr unsigned VistaId = 71251;
constexpr unsigned Windows7Id = 71350;
constexpr unsigned Server2008Id = Server2008Group;
constexpr unsigned Server2008R2Id = Server2008R2Group;
constexpr unsigned VistaBusinessId = 71271;
constexpr unsigned VistaEnterpriseId = 71272;
constexpr unsigned VistaHomeBasicId = 71273;
constexpr unsigned VistaHomePremiumId = 71274;
constexpr unsigned VistaUltimateId = 71275;
// Always false; the service lists them.
constexpr unsigned Unused1Id = 71265;
constexpr unsigned Unused2Id = 71266;
constexpr unsigned Unused3Id = 71310;
constexpr unsigned Unused4Id = 71267;
constexpr unsigned Unused5Id = 71270;

}  // namespace kel::OSIds
