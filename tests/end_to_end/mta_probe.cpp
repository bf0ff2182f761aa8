// Creates the registered control from a multithreaded apartment, as a C++ host may, and asks it by name.
#include <windows.h>

#include <comutil.h>
#include <wrl/client.h>

#include <cstdio>

#include "client/Script.h"

int main()
{
    if (FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)))
        return 1;
    CLSID classId = {};
    CLSIDFromProgID(L"KELDetection_TAMS64.SysInfo", &classId);
    HRESULT result = E_FAIL;
    {
        Microsoft::WRL::ComPtr<IDispatch> control;
        result = CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&control));
        _variant_t version;
        const _variant_t user(L"visitor");
        if (SUCCEEDED(result))
            result = kel::test::Call(control.Get(), L"UserID", version, &user);
        if (SUCCEEDED(result))
            result = kel::test::Call(control.Get(), L"UserID", version);
        std::printf("%08lX %ls\n", static_cast<unsigned long>(result),
                    version.vt == VT_BSTR ? version.bstrVal : L"");
    }
    CoUninitialize();
    return FAILED(result);
}
