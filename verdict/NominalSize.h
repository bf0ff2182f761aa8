#pragma once

#include <optional>
#include <string>

#include "verdict/Catalogue.h"
#include "verdict/Readings.h"

namespace kel {

/// A size as it is sold.
struct NominalSize {
    double bytes = 0;
    std::string text;  // "8 GB"; for a disk in powers of ten
};

/// The usual size with which something that reports this figure was sold: the smallest one that is not below
/// the figure, which may fall short of it by an eighth. Nothing when there is none, and for amounts other
/// than bytes.
std::optional<NominalSize> FindNominalSize(const Amount& figure, SoldAs soldAs);

/// How a needed size is read: sizes of disks in powers of ten, as they are sold.
ByteSteps NominalSteps(SoldAs soldAs);

}  // namespace kel
