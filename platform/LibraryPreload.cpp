#include "platform/LibraryPreload.h"

#include "platform/Library.h"

namespace kel {

namespace {

constexpr DWORD MaxWait = 2000;  // milliseconds

DWORD WINAPI LoadAll(LPVOID names)
{
    try {
        for (auto name = static_cast<const wchar_t* const*>(names); *name != nullptr; ++name)
            static_cast<void>(LoadSystemLibrary(*name).release());
    } catch (...) {
        // Out of memory: the rest is loaded when it is needed.
    }
    return 0;
}

}  // namespace

LibraryPreload::LibraryPreload(const wchar_t* const* names) noexcept
    : thread(CreateThread(nullptr, 0, &LoadAll, const_cast<const wchar_t**>(names), 0, nullptr))
{
}

LibraryPreload::~LibraryPreload()
{
    if (thread)
        WaitForSingleObject(thread.get(), MaxWait);
}

}  // namespace kel
