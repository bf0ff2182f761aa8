// A program that uses the control: one copy of it carries the control privately, by its manifest.
#include <windows.h>

#include <comutil.h>
#include <wrl/client.h>

#include <cstdio>

#include "Detection.h"

int main()
{
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    Microsoft::WRL::ComPtr<ISysInfo> control;
    const HRESULT result =
        CoCreateInstance(CLSID_SysInfo, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&control));
    _bstr_t version;
    if (FAILED(result) || FAILED(control->get_Version(version.GetAddress()))) {
        std::printf("%08lx\n", static_cast<unsigned long>(result));
        return EXIT_FAILURE;
    }
    std::printf("%ls\n", static_cast<const wchar_t*>(version));
    return EXIT_SUCCESS;
}
