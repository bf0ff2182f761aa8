#pragma once

#include <string>
#include <vector>

#include "verdict/files/Snapshot.h"

namespace kel::program {

/// The bandwidth of the connection, which a download measures.
inline constexpr int BandwidthGroup = 71069;

/// All values of the catalogue but the bandwidth.
std::vector<unsigned> AllGroups();

/// Reads this machine, once per process. Nothing is sent or received, unless the groups have the bandwidth.
/// @param groups those that are read although they cost a graphics driver or a download
Snapshot ReadMachine(std::vector<unsigned> groups);

/// Does what the control does for a verdict: asks the service which values it wants, reads this machine,
/// uploads the report, and asks for the verdict.
/// @param product as the service names it
/// @throws UserError when the service does not answer with a verdict
Snapshot CheckByService(const std::string& product);

}  // namespace kel::program
