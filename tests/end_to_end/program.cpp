// A program that uses the control by its members' names. One copy of the program has a manifest with which it
// uses its own copy of the control. With "hold" it asks for the local server's, holds that until it is sent a
// line, and ends after another one; with another argument it is multithreaded.
#include <windows.h>

#include <comutil.h>
#include <wrl/client.h>

#include <cstdio>
#include <cstring>

#include "client/Hosts.h"

int main(int count, char** arguments)
{
    const bool holds = count > 1 && std::strcmp(arguments[1], "hold") == 0;
    const kel::test::Apartment apartment(count > 1 && !holds ? COINIT_MULTITHREADED
                                                             : COINIT_APARTMENTTHREADED);
    Microsoft::WRL::ComPtr<IDispatch> control;
    _variant_t user(L"visitor"), found;
    HRESULT result = CoCreateInstance(
        CLSID_SysInfo, nullptr, holds ? CLSCTX_LOCAL_SERVER : CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&control));
    if (SUCCEEDED(result))
        result = kel::test::Call(control.Get(), L"UserID", found, &user);
    if (holds) {
        std::printf("%08lX\n", static_cast<unsigned long>(result));
        std::fflush(stdout);
        std::getchar();
    }
    if (SUCCEEDED(result))
        result = kel::test::Call(control.Get(), L"UserID", found);
    std::printf("%08lX %ls\n", static_cast<unsigned long>(result), found.vt == VT_BSTR ? found.bstrVal : L"");
    if (holds) {
        std::fflush(stdout);
        control.Reset();
        std::getchar();
    }
    return FAILED(result);
}
