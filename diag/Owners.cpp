#include "diag/Owners.h"

#include "diag/Log.h"

namespace kel {

FARPROC FindProcedure(HMODULE library, const char* name) noexcept
{
    const FARPROC procedure = GetProcAddress(library, name);
    if (procedure == nullptr)
        ReportFailure(LogWarning, L"The system has no function ", name);
    return procedure;
}

OwnedKey OpenKey(HKEY parent, const wchar_t* name, REGSAM access) noexcept
{
    HKEY key = nullptr;
    return RegOpenKeyExW(parent, name, 0, access, &key) == ERROR_SUCCESS ? OwnedKey(key) : OwnedKey();
}

}  // namespace kel
