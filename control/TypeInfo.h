#pragma once

#include <oaidl.h>
#include <windows.h>

#include <wrl/client.h>

namespace kel {

/// Loads the description of ISysInfo from the type library inside the DLL. It serves IDispatch, and needs no
/// turn.
/// @return null when it cannot be loaded; then an error is logged, unless another apartment has its turn
Microsoft::WRL::ComPtr<ITypeInfo> LoadSysInfoTypeInfo() noexcept;

}  // namespace kel
