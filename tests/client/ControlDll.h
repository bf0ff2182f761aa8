#pragma once

#include <windows.h>

#include <wrl/client.h>

#include <string>

#include "Detection.h"
#include "platform/Library.h"

namespace kel::test {

/// The built DLL, loaded from outside as the COM loader does.
class ControlDll {
public:
    ControlDll() : library(LoadLibraryW(KEL_DLL_PATH)) {}

    HMODULE Handle() const { return library.get(); }

    template <typename Function>
    Function* Entry(const char* name) const
    {
        return FindFunction<Function>(library.get(), name);
    }

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

/// A COM apartment as long as it lives.
struct Apartment {
    Apartment() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
    ~Apartment() { CoUninitialize(); }
};

}  // namespace kel::test
