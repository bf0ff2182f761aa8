#include "platform/LibraryPreload.h"

#include <objbase.h>
#include <wrl/client.h>

#include "platform/Library.h"

namespace kel {

namespace {

constexpr DWORD MaxWait = 2000;  // milliseconds

void LoadClasses(std::span<const CLSID> classes)
{
    if (FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)))
        return;
    for (const CLSID& id : classes) {
        Microsoft::WRL::ComPtr<IUnknown> factory;
        static_cast<void>(CoGetClassObject(id, CLSCTX_INPROC_SERVER, nullptr, IID_IUnknown,
                                           reinterpret_cast<void**>(factory.GetAddressOf())));
    }
    CoUninitialize();
}

DWORD WINAPI LoadAll(LPVOID context)
{
    const auto& list = *static_cast<const LibraryPreload::List*>(context);
    try {
        for (const wchar_t* const name : list.libraries)
            static_cast<void>(LoadSystemLibrary(name).release());
        LoadClasses(list.classes);
    } catch (...) {
        // Out of memory: the rest is loaded when it is needed.
    }
    return 0;
}

}  // namespace

LibraryPreload::LibraryPreload(const List& list) noexcept
    : thread(CreateThread(nullptr, 0, &LoadAll, const_cast<List*>(&list), 0, nullptr))
{
}

LibraryPreload::~LibraryPreload()
{
    if (thread)
        WaitForSingleObject(thread.get(), MaxWait);
}

}  // namespace kel
