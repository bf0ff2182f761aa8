// A program that uses the control by its members' names. One copy of the program has a manifest with which it
// uses its own copy of the control. With an argument it is multithreaded.
#include <windows.h>

#include <comutil.h>
#include <wrl/client.h>

#include <cstdio>

#include "client/Hosts.h"

int main(int count, char**)
{
    const kel::test::Apartment apartment(count > 1 ? COINIT_MULTITHREADED : COINIT_APARTMENTTHREADED);
    Microsoft::WRL::ComPtr<IDispatch> control;
    _variant_t user(L"visitor"), found;
    HRESULT result = CoCreateInstance(CLSID_SysInfo, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&control));
    if (SUCCEEDED(result))
        result = kel::test::Call(control.Get(), L"UserID", found, &user);
    if (SUCCEEDED(result))
        result = kel::test::Call(control.Get(), L"UserID", found);
    std::printf("%08lX %ls\n", static_cast<unsigned long>(result), found.vt == VT_BSTR ? found.bstrVal : L"");
    return FAILED(result);
}
