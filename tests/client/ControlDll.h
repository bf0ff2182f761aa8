#pragma once

#include <windows.h>

#include <comutil.h>
#include <gtest/gtest.h>
#include <wrl/client.h>

#include <string>

#include "Detection.h"
#include "client/EdgeFaults.h"
#include "platform/Library.h"
#include "support/TestFiles.h"

namespace kel::test {

/// The built DLL, loaded from outside as the COM loader does.
class ControlDll {
public:
    explicit ControlDll(const std::filesystem::path& path = TestFile(KEL_DLL_PATH))
        : library(LoadLibraryW(path.c_str()))
    {
    }

    HMODULE Handle() const { return library.get(); }

    template <typename Function>
    Function* Entry(const char* name) const
    {
        return FindFunction<Function>(library.get(), name);
    }

    HRESULT CanUnload() const { return Entry<decltype(DllCanUnloadNow)>("DllCanUnloadNow")(); }

    Microsoft::WRL::ComPtr<IClassFactory> Factory() const
    {
        Microsoft::WRL::ComPtr<IClassFactory> factory;
        if (const auto getClassObject = Entry<decltype(DllGetClassObject)>("DllGetClassObject"))
            getClassObject(CLSID_SysInfo, IID_PPV_ARGS(&factory));
        return factory;
    }

    Microsoft::WRL::ComPtr<ISysInfo> Create() const
    {
        Microsoft::WRL::ComPtr<ISysInfo> control;
        if (const auto factory = Factory())
            factory->CreateInstance(nullptr, IID_PPV_ARGS(&control));
        return control;
    }

private:
    OwnedLibrary library;
};

/// The text that a member returns, with its zeros; the empty text for none. The member has to return S_OK, or
/// E_OUTOFMEMORY when a fault prevented the text's allocation.
template <typename Member, typename... Texts>
std::wstring Get(const Microsoft::WRL::ComPtr<ISysInfo>& control, Member member, Texts... texts)
{
    _bstr_t result;
    const HRESULT status = (control.Get()->*member)(_bstr_t(texts)..., result.GetAddress());
    EXPECT_TRUE(status == S_OK || (status == E_OUTOFMEMORY && EdgeFaults::FailsTexts()));
    return {result.GetBSTR(), result.GetBSTR() + result.length()};
}

}  // namespace kel::test
