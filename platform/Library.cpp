#include "platform/Library.h"

#include <stdexcept>

#include "diag/Log.h"

namespace kel {

namespace {

HMODULE FindThisModule(DWORD flags, const char* error)
{
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | flags,
                            reinterpret_cast<LPCWSTR>(reinterpret_cast<void*>(&ThisModule)), &module))
        throw std::runtime_error(error);
    return module;
}

}  // namespace

OwnedLibrary LoadSystemLibrary(const wchar_t* name) noexcept
{
    return OwnedLibrary(LoadLibraryExW(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
}

FARPROC FindProcedure(HMODULE library, const char* name) noexcept
{
    const FARPROC procedure = GetProcAddress(library, name);
    if (procedure == nullptr)
        ReportFailure(LogWarning, L"The system has no function ", name);
    return procedure;
}

HMODULE ThisModule()
{
    return FindThisModule(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT, "The module's handle is unknown.");
}

HMODULE PinThisModule()
{
    return FindThisModule(GET_MODULE_HANDLE_EX_FLAG_PIN, "The module cannot be kept.");
}

}  // namespace kel
