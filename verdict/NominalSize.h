#pragma once

#include <optional>
#include <string>

#include "verdict/Catalogue.h"
#include "verdict/Readings.h"

namespace kel {

/// A size as it is sold.
struct NominalSize {
    double bytes = 0;
    std::string text;  // "8 GB"; of a disk in powers of ten
};

/// The usual size that something was sold with which reports this figure: the smallest that is not below the
/// figure, which may fall short of it by an eighth. Nothing when there is none, and for other amounts than
/// bytes.
std::optional<NominalSize> FindNominalSize(const Amount& figure, SoldAs soldAs);

/// How requirements of such a size are read: those of disks in powers of ten, as they are sold.
ByteSteps NominalSteps(SoldAs soldAs);

}  // namespace kel
