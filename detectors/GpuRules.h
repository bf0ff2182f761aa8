// Facts about graphics adapters that follow from other facts.
#pragma once

#include <optional>
#include <string>

#include "probes/graphics/GpuInfo.h"

namespace kel {

/// Whether the adapter does not count: a software renderer, one that shows the picture of a remote session,
/// or a USB display.
bool IsExcludedAdapter(const GpuInfo& adapter);

/// NVIDIA's own version in the driver's, such as 576.28 in 32.0.15.7628; nullopt for other vendors, whose own
/// versions are not part of the driver's.
std::optional<Version> VendorDriverVersion(const GpuInfo& adapter);

/// Whether the adapter shares the processor's memory or is part of its chip. This is a guess, for systems
/// that do not report it.
std::optional<bool> IsIntegrated(const GpuInfo& adapter);

/// Uses the amount of memory in the driver's key when it is a little more than the reported one: the system
/// keeps a part of a card's memory for itself. A much larger amount includes the shared memory.
void CorrectMemory(GpuInfo& adapter);

/// Fills the facts that follow from others: memory, vendor, integrated, virtual.
void FinishGpuInfo(GpuInfo& adapter);

/// Whether a program would prefer one adapter to the other: one that a graphics interface lists first,
/// hardware before a virtual machine's, a card before an integrated one, then more memory, the higher feature
/// level, and the ids.
bool IsBetterAdapter(const GpuInfo& one, const GpuInfo& other);

}  // namespace kel
