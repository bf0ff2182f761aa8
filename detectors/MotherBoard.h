#pragma once

#include <string>

#include "detectors/Component.h"
#include "probes/BoardInfo.h"

namespace kel {

/// The detector of the motherboard: version from the registry, the rest from WMI.
class MotherBoard : public Component {
public:
    bool Detect() override;
};

/// Takes what the target lacks from a source.
void MergeBoardInfo(BoardInfo& target, const BoardInfo& source);

/// Whether a board version begins with "aa", in either case.
bool IsAaVersion(const std::wstring& version);

}  // namespace kel
