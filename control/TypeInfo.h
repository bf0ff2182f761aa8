#pragma once

#include <oaidl.h>
#include <windows.h>

#include <wrl/client.h>

namespace kel {

/// The description of ISysInfo from the type library inside the DLL, loaded on first use; null when it cannot
/// be loaded. It serves IDispatch.
Microsoft::WRL::ComPtr<ITypeInfo> SysInfoTypeInfo() noexcept;

}  // namespace kel
