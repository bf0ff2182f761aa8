// Tells whether the DLL is still loaded when its owner lets it go, and whether it goes later.
#include <cstdio>

#include "client/ControlDll.h"

int main()
{
    const kel::test::Apartment apartment;
    {
        const kel::test::ControlDll dll;
        dll.Create()->Detect();
    }
    const auto isLoaded = [] { return GetModuleHandleW(L"Detection.dll") != nullptr; };
    std::puts(isLoaded() ? "kept" : "gone");
    for (int tenths = 0; tenths < 300 && isLoaded(); ++tenths)
        Sleep(100);
    std::puts(isLoaded() ? "kept" : "gone");
    return 0;
}
