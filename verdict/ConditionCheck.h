#pragma once

#include <string>

#include "verdict/Requirements.h"

namespace kel {

/// What is wrong with a condition, or doubtful, and the name of the line's entry that is to blame.
struct ConditionFault {
    std::string reason;  // empty when nothing is wrong
    const char* name = "needed";
};

/// Why a condition cannot be meant: an id that no machine has, a comparison that does not fit the value, or a
/// needed text with which it never holds, or always.
ConditionFault FindError(const Condition& condition);

/// What is allowed and probably not meant. For a condition without an error.
ConditionFault FindDoubt(const Condition& condition);

/// Whether no value meets both conditions.
bool AreExclusive(const Condition& one, const Condition& other);

/// Whether each known value meets one of the conditions.
bool CoverAll(const Condition& one, const Condition& other);

}  // namespace kel
