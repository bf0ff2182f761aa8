#pragma once

#include <string>

namespace kel {

/// One source's facts about the motherboard; an empty text is unknown.
struct BoardInfo {
    std::wstring manufacturer;
    std::wstring product;
    std::wstring version;
    bool hasAaVersion = false;  ///< the version begins with "aa", in either case; of the merged record
};

}  // namespace kel
