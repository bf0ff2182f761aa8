#include "platform/Library.h"

#include <stdexcept>
#include <string>

#include "diag/Log.h"
#include "platform/ErrorMode.h"

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

std::wstring SystemPath(const wchar_t* name)
{
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetSystemDirectoryW(path.data(), MAX_PATH));
    return path + L'\\' + name;
}

}  // namespace

OwnedLibrary LoadSystemLibrary(const wchar_t* name, decltype(&LoadLibraryExW) load)
{
    const ErrorMode quiet;
    const HMODULE library = load(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    // Windows 7 does not know the flag before its update KB2533623.
    if (library != nullptr || GetLastError() != ERROR_INVALID_PARAMETER)
        return OwnedLibrary(library);
    return OwnedLibrary(load(SystemPath(name).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
}

FARPROC FindProcedure(HMODULE library, const char* name) noexcept
{
    // To the system, a null library means the host's program.
    const FARPROC procedure = library != nullptr ? GetProcAddress(library, name) : nullptr;
    if (procedure == nullptr)  // normal: each is optional, as older systems lack it
        ReportFailure(LogTrace, L"The system has no function ", name);
    return procedure;
}

FARPROC FindPermanentProcedure(const wchar_t* library, const char* name)
{
    const ErrorMode quiet;
    return FindProcedure(LoadSystemLibrary(library).release(), name);
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
