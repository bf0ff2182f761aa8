#include "diag/Owners.h"

namespace kel {

OwnedKey OpenKey(HKEY parent, const wchar_t* name, REGSAM access) noexcept
{
    HKEY key = nullptr;
    return RegOpenKeyExW(parent, name, 0, access, &key) == ERROR_SUCCESS ? OwnedKey(key) : OwnedKey();
}

}  // namespace kel
