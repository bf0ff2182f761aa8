#include "control/TypeInfo.h"

#include "Detection.h"
#include "control/DetectionModule.h"
#include "control/Turn.h"
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
    if (!typeInfo) {
        // The log is not locked: without a turn, as during another apartment's run, nothing is logged.
        if (const Turn turn(std::chrono::milliseconds::zero()); turn)
            ReportFailure(LogError, L"The type library cannot be loaded.");
    }
    return typeInfo;
}

}  // namespace kel
