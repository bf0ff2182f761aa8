// What the system says of an adapter by its key, without loading a driver.
#pragma once

#include <windows.h>

#include <optional>

namespace kel {

/// The version of the driver's model in thousandths, such as 3100; 0 when it is unknown.
UINT AskDriverModel(LUID luid);

/// Whether an adapter is part of the processor's chip: by DXCore ("dxcore.dll", Windows 10 2004), which knows
/// it of every adapter; nullopt without it.
std::optional<bool> IsIntegratedByDxCore(LUID luid);

/// The same by the kernel ("gdi32.dll"), which marks the adapters of a machine with both kinds; nullopt for
/// other machines' adapters.
std::optional<bool> IsIntegratedByKernel(LUID luid);

}  // namespace kel
