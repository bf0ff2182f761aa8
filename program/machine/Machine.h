#pragma once

#include <string>
#include <vector>

#include "verdict/files/Snapshot.h"

namespace kel::program {

/// Whether reading a value uses the network, as the bandwidth's measurement by a download does: the catalogue
/// has such a value as a gated one of the network.
bool UsesNetwork(int group);

/// All values of the catalogue that are read without using the network.
std::vector<unsigned> AllGroups();

/// Reads this machine, once per process. Nothing is sent or received, unless a group uses the network.
/// @param groups those that are read although they cost a graphics driver or a download
Snapshot ReadMachine(std::vector<unsigned> groups);

/// Does what the control does for a verdict: asks the service which values it wants, reads this machine,
/// uploads the report, and asks for the verdict.
/// @param product as the service names it
/// @throws UserError when the service does not answer with a verdict
Snapshot CheckByService(const std::string& product);

}  // namespace kel::program
