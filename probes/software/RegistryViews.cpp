#include "probes/software/RegistryViews.h"

#include <cstring>

namespace kel {

namespace {

constexpr std::size_t MaxTextSize = 8192;  // bytes

}  // namespace

OwnedKey OpenView(const SoftwareFunctions& functions, const RegistryView& view, const std::wstring& name)
{
    return functions.openKey(view.root, name.c_str(), KEY_READ | view.flag);
}

std::wstring ReadText(HKEY key, const wchar_t* name)
{
    std::wstring text;
    ReadStringValue(key, name, MaxTextSize, text);
    return text;
}

DWORD ReadNumber(HKEY key, const wchar_t* name)
{
    DWORD number = 0;
    const std::optional<RegistryValue> value = ReadValue(key, name);
    if (value && value->type == REG_DWORD && value->bytes.size() == sizeof(number))
        std::memcpy(&number, value->bytes.data(), sizeof(number));
    return number;
}

}  // namespace kel
