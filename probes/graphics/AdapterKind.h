// Facts about an adapter that the system reports by its key, without loading a driver.
#pragma once

#include <windows.h>

#include <optional>

namespace kel {

/// The version of the driver's model in thousandths, such as 3100; 0 when it is unknown.
UINT AskDriverModel(LUID luid);

/// Whether an adapter is part of the processor's chip, as reported by DXCore ("dxcore.dll", Windows 10 2004)
/// for every adapter; nullopt without DXCore.
std::optional<bool> IsIntegratedByDxCore(LUID luid);

/// The same as reported by the kernel ("gdi32.dll"), which marks the adapters only on machines with both
/// kinds; nullopt on other machines.
std::optional<bool> IsIntegratedByKernel(LUID luid);

}  // namespace kel
