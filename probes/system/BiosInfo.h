#pragma once

#include <string>

namespace kel {

/// One source's facts about the BIOS; an empty text is unknown.
struct BiosInfo {
    std::wstring name;
    std::wstring version;
    std::wstring date;
    std::wstring manufacturer;
};

}  // namespace kel
