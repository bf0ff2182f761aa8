#include "probes/graphics/AdapterKind.h"

#include <unknwn.h>
#include <wrl/client.h>

#include "platform/Library.h"

namespace kel {

namespace {

// The display driver interface in "gdi32.dll", which the platform's headers do not declare.
struct OpenAdapter {
    LUID luid;
    UINT adapter;
};
struct QueryAdapter {
    UINT adapter;
    UINT type;
    void* data;
    UINT size;
};
static_assert(sizeof(OpenAdapter) == 12 && sizeof(QueryAdapter) == 24);
constexpr UINT DriverModelQuery = 13;  // KMTQAITYPE_DRIVERVERSION
constexpr UINT AdapterTypeQuery = 15;  // KMTQAITYPE_ADAPTERTYPE
constexpr UINT HybridDiscrete = 1U << 4;
constexpr UINT HybridIntegrated = 1U << 5;
constexpr const wchar_t* Kernel = L"gdi32.dll";

// The parts of DXCore's interfaces that are called; the platform's headers do not declare them.
constexpr IID FactoryId = {0x78ee5945, 0xc36e, 0x4b13, {0xa6, 0x69, 0x00, 0x5d, 0xd1, 0x1c, 0x0f, 0x06}};
constexpr IID AdapterId = {0xf0db4c7f, 0xfe5a, 0x42a2, {0xbd, 0x62, 0xf2, 0xa6, 0xcf, 0x6f, 0xc8, 0x3e}};
constexpr UINT32 IntegratedProperty = 12;  // DXCoreAdapterProperty::IsIntegrated

struct CoreFactory : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE CreateAdapterList(UINT32, const GUID*, REFIID, void**) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetAdapterByLuid(const LUID& luid, REFIID riid, void** adapter) = 0;

protected:
    ~CoreFactory() = default;
};

struct CoreAdapter : IUnknown {
    virtual bool STDMETHODCALLTYPE IsValid() = 0;
    virtual bool STDMETHODCALLTYPE IsAttributeSupported(REFGUID) = 0;
    virtual bool STDMETHODCALLTYPE IsPropertySupported(UINT32 property) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetProperty(UINT32 property, std::size_t size, void* data) = 0;

protected:
    ~CoreAdapter() = default;
};

}  // namespace

UINT AskKernel(LUID luid, UINT type)
{
    using Open = LONG WINAPI(OpenAdapter*);
    using Query = LONG WINAPI(QueryAdapter*);
    using Close = LONG WINAPI(const UINT*);
    auto* const open = PermanentFunction<Open>(Kernel, "D3DKMTOpenAdapterFromLuid");
    auto* const query = PermanentFunction<Query>(Kernel, "D3DKMTQueryAdapterInfo");
    auto* const close = PermanentFunction<Close>(Kernel, "D3DKMTCloseAdapter");
    OpenAdapter opened = {luid, 0};
    if (open == nullptr || query == nullptr || close == nullptr || open(&opened) < 0)
        return 0;
    UINT answer = 0;
    QueryAdapter asked = {opened.adapter, type, &answer, sizeof(answer)};
    const bool isAnswered = query(&asked) >= 0;
    close(&opened.adapter);
    return isAnswered ? answer : 0;
}

UINT AskDriverModel(const KernelQuery& askKernel, LUID luid)
{
    return askKernel(luid, DriverModelQuery);
}

std::optional<bool> IsIntegratedByDxCore(LUID luid)
{
    auto* const create =
        PermanentFunction<HRESULT WINAPI(REFIID, void**)>(L"dxcore.dll", "DXCoreCreateAdapterFactory");
    Microsoft::WRL::ComPtr<CoreFactory> factory;
    Microsoft::WRL::ComPtr<CoreAdapter> adapter;
    bool isIntegrated = false;
    if (create == nullptr ||
        FAILED(create(FactoryId, reinterpret_cast<void**>(factory.ReleaseAndGetAddressOf()))) ||
        FAILED(factory->GetAdapterByLuid(luid, AdapterId,
                                         reinterpret_cast<void**>(adapter.ReleaseAndGetAddressOf()))) ||
        !adapter->IsPropertySupported(IntegratedProperty) ||
        FAILED(adapter->GetProperty(IntegratedProperty, sizeof(isIntegrated), &isIntegrated)))
        return std::nullopt;
    return isIntegrated;
}

std::optional<bool> IsIntegratedByKernel(const KernelQuery& askKernel, LUID luid)
{
    const UINT type = askKernel(luid, AdapterTypeQuery);
    if ((type & (HybridDiscrete | HybridIntegrated)) == 0)
        return std::nullopt;
    return (type & HybridIntegrated) != 0;
}

}  // namespace kel
