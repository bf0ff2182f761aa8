#include "platform/RegistryNames.h"

namespace kel {

namespace {

constexpr DWORD MaxKeyName = 256;      // characters, with the zero
constexpr DWORD MaxValueName = 16384;  // the same

/// Reads one name after the other; a name that is too long is skipped.
template <typename Ask>
std::vector<std::wstring> ListNames(DWORD maxLength, DWORD maxCount, Ask ask)
{
    std::vector<std::wstring> names;
    std::wstring name(maxLength, L'\0');
    for (DWORD index = 0; index < maxCount; ++index) {
        DWORD size = maxLength;
        const LSTATUS status = ask(index, name.data(), &size);
        if (status == ERROR_NO_MORE_ITEMS)
            break;
        if (status == ERROR_SUCCESS && size > 0)
            names.emplace_back(name, 0, size);
    }
    return names;
}

}  // namespace

std::vector<std::wstring> ListSubkeys(HKEY key, DWORD maxCount)
{
    return ListNames(MaxKeyName, maxCount, [key](DWORD index, wchar_t* name, DWORD* size) {
        return RegEnumKeyExW(key, index, name, size, nullptr, nullptr, nullptr, nullptr);
    });
}

std::vector<std::wstring> ListValues(HKEY key, DWORD maxCount)
{
    return ListNames(MaxValueName, maxCount, [key](DWORD index, wchar_t* name, DWORD* size) {
        return RegEnumValueW(key, index, name, size, nullptr, nullptr, nullptr, nullptr);
    });
}

DWORD CountValues(HKEY key) noexcept
{
    DWORD count = 0;
    const LSTATUS status = RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &count,
                                            nullptr, nullptr, nullptr, nullptr);
    return status == ERROR_SUCCESS ? count : 0;
}

}  // namespace kel
