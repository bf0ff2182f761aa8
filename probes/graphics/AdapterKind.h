// Facts about an adapter that the system reports by its key, without loading a driver.
#pragma once

#include <windows.h>

#include <boost/function.hpp>
#include <optional>

namespace kel {

/// A number that the kernel ("gdi32.dll") reports for an adapter, by the type of the question; 0 when it
/// reports none.
using KernelQuery = boost::function<UINT(LUID luid, UINT type)>;
UINT AskKernel(LUID luid, UINT type);

/// The version of the driver's model in thousandths, such as 3100; 0 when it is unknown.
UINT AskDriverModel(const KernelQuery& askKernel, LUID luid);

/// Whether an adapter is part of the processor's chip, as reported by DXCore ("dxcore.dll", Windows 10 2004)
/// for every adapter; nullopt without DXCore.
std::optional<bool> IsIntegratedByDxCore(LUID luid);

/// The same as reported by the kernel, which marks the adapters only on machines with both kinds; nullopt on
/// other machines.
std::optional<bool> IsIntegratedByKernel(const KernelQuery& askKernel, LUID luid);

}  // namespace kel
