#include "control/TypeInfo.h"

#include "Detection.h"
#include "control/DetectionModule.h"
#include "diag/Log.h"

namespace kel {

Microsoft::WRL::ComPtr<ITypeInfo> LoadSysInfoTypeInfo() noexcept
{
    Microsoft::WRL::ComPtr<ITypeInfo> typeInfo;
    try {
        Microsoft::WRL::ComPtr<ITypeLib> library;
        if (SUCCEEDED(LoadTypeLibEx(CDetectionModule::Path().c_str(), REGKIND_NONE, &library)))
            library->GetTypeInfoOfGuid(IID_ISysInfo, &typeInfo);
    } catch (...) {
        typeInfo.Reset();
    }
    if (!typeInfo)
        ReportFailure(LogError, L"The type library cannot be loaded.");
    return typeInfo;
}

}  // namespace kel
