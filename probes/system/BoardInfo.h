#pragma once

#include <string>

#include "values/Name.h"

namespace kel {

/// One source's facts about the motherboard; an empty text is unknown.
struct BoardInfo {
    std::wstring manufacturer;
    std::wstring product;
    std::wstring version;
    bool hasAaVersion = false;  ///< the version begins with "aa", in either case; of the merged record
    Name systemVendor;          ///< of the machine, not of its board; placeholders are dropped
    Name systemModel;
};

}  // namespace kel
