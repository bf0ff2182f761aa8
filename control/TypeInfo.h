#pragma once

#include <oaidl.h>
#include <windows.h>

#include <wrl/client.h>

namespace kel {

/// Loads the description of ISysInfo from the type library inside the DLL; null, with an error in the log,
/// when it cannot be loaded. It serves IDispatch.
Microsoft::WRL::ComPtr<ITypeInfo> LoadSysInfoTypeInfo() noexcept;

}  // namespace kel
