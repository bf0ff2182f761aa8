// The display name of an operating system, built from its version record.
#pragma once

#include <string>
#include <vector>

#include "probes/system/OSInfo.h"

namespace kel {

/// A display name and the flags that were set while it was built.
struct OSName {
    bool isBuilt = false;
    std::wstring text;            ///< at most 255 characters
    std::vector<unsigned> flags;  ///< value ids, in the order in which they are stored as true
};

/// Builds the name. Systems older than Windows 2000 get none and a message on the standard output.
OSName BuildDisplayName(const OSInfo& info);

}  // namespace kel
