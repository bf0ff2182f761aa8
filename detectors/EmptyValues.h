// Why a detector's values are empty.
#pragma once

#include <string_view>
#include <vector>

#include "diag/SourceFailures.h"

namespace kel {

/// Notes in the current session why values of a detector are empty or missing: not asked for, a source that
/// the catalogue names for them could not be read, or the detector failed. All others are not there. The log
/// gets a line for each value with its name.
/// @param detector its class, as the catalogue names it
void NoteReasons(std::wstring_view detector, const Failures& failures) noexcept;

/// The same for one value of one of several devices, each of which can fail by itself: notes the first of the
/// device's failures that one of the value's sources has.
void NoteFailure(unsigned id, int index, const std::vector<SourceFailure>& failures);

/// Notes for an empty value that it is derived from another one, whose reason is its own.
void NoteOrigin(unsigned id, unsigned origin);

}  // namespace kel
