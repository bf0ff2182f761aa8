// The value ids of the operating system.
#pragma once

#include "run/FixedGroups.h"

namespace kel::OSIds {

constexpr unsigned DisplayNameId = 71060;
constexpr unsigned VersionId = 71072;
constexpr unsigned VersionCopyId = 71309;
constexpr unsigned MajorVersionId = 71367;
constexpr unsigned MinorVersionId = 71368;
constexpr unsigned BuildId = 71366;
constexpr unsigned ServicePackMajorId = 71364;
constexpr unsigned ServicePackMinorId = 71365;
constexpr unsigned SuiteMaskId = 71363;
constexpr unsigned ProductTypeId = 71362;
constexpr unsigned LocaleId = 71388;
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
