// Uses the generated header: building the control makes Detection.h and Detection_i.c from the type library's
// source. The thread enters a single-threaded apartment, in which the control lives: a 64-bit program loads
// it; for a 32-bit one it needs the local server.
#include <windows.h>

#include <comutil.h>
#include <wrl/client.h>

#include <cstdio>
#include <string>

#include "Detection.h"

int wmain(int count, wchar_t** arguments)
{
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)))
        return 2;
    Microsoft::WRL::ComPtr<ISysInfo> control;
    if (FAILED(CoCreateInstance(CLSID_SysInfo, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER,
                                IID_PPV_ARGS(&control)))) {
        std::fputs("The control is not installed.\n", stderr);
        return 2;
    }
    control->put_ReferrerID(_bstr_t(count > 1 ? arguments[1] : L"demo"));
    control->put_UserID(_bstr_t(L"visitor"));
    _bstr_t answer;  // empty or null when there is none
    _bstr_t memory;
    _bstr_t state;  // how the last exchange ended
    control->get_Analysis(_bstr_t(L"requirements"), _bstr_t(L"xml"), _bstr_t(L"1.0"), answer.GetAddress());
    control->get_Value(_bstr_t(L"71063"), memory.GetAddress());
    control->get_Value(_bstr_t(L"73390"), state.GetAddress());
    const std::wstring verdict = answer.length() != 0 ? static_cast<const wchar_t*>(answer) : L"";
    const std::wstring mark = L"<analysis result=\"";
    const std::size_t start = verdict.find(mark);
    std::wstring total;
    if (start != std::wstring::npos) {
        total = verdict.substr(start + mark.size());
        total = total.substr(0, total.find(L'"'));
        std::printf("Verdict: %ls\n", total.c_str());
    } else {
        std::printf("No verdict: %ls\n", state.length() != 0 ? state.GetBSTR() : L"no exchange");
    }
    std::printf("Memory: %ls\n", memory.length() != 0 ? memory.GetBSTR() : L"unknown");
    control.Reset();
    CoUninitialize();
    return total.empty() ? 2 : total == L"pass" ? 0 : 1;
}
