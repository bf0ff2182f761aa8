// What is made of the facts about graphics adapters.
#pragma once

#include <optional>
#include <string>

#include "probes/graphics/GpuInfo.h"

namespace kel {

/// Whether the adapter is none of the machine's own: one that draws by software, or that shows a picture far
/// away.
bool IsExcludedAdapter(const GpuInfo& adapter);

/// NVIDIA's own version in the driver's, such as 576.28 in 32.0.15.7628; nothing for other makers, which do
/// not write theirs there.
std::optional<Version> VendorDriverVersion(const GpuInfo& adapter);

/// Whether the adapter shares the processor's memory, or a part of its chip; a hint.
std::optional<bool> IsIntegrated(const GpuInfo& adapter);

/// Fills the facts that follow from others: maker, integrated, virtual.
void FinishGpuInfo(GpuInfo& adapter);

/// Whether a program would rather use the one adapter than the other: hardware before what a virtual machine
/// offers, then the one with more memory, then with the higher level, then by the id.
bool IsBetterAdapter(const GpuInfo& one, const GpuInfo& other);

}  // namespace kel
