// Facts as a person reads them.
#pragma once

#include <string>
#include <vector>

#include "program/text/Output.h"
#include "verdict/files/Snapshot.h"

namespace kel::program {

/// The area of a value, such as "memory"; "other" for an id that the catalogue lacks.
std::string AreaOf(int id);

/// Writes facts by area, in the catalogue's order of areas.
/// @param showsEmpty also those without a text and those that are missing, with the reason where it is known
/// @return how many were left out
int WriteFacts(Output& output, const Snapshot& snapshot, bool showsEmpty);

}  // namespace kel::program
