#include "values/Junk.h"

#include <algorithm>
#include <string_view>

#include "values/Text.h"

namespace kel {

namespace {

constexpr std::wstring_view Fillers[] = {
    L"to be filled by o.e.m.",
    L"default string",
    L"system manufacturer",
    L"system product name",
    L"product name",
    L"oem",
    L"o.e.m.",
    L"invalid",
    L"not applicable",
    L"not specified",
    L"generic pnp monitor",
    L"generic non-pnp monitor",
    L"n/a",
    L"(standard disk drives)",
};

bool IsControl(wchar_t character)
{
    return character < L' ' || character == L'\x7F';
}

}  // namespace

std::wstring TidyText(const std::wstring& text)
{
    const std::wstring tidy = Trim({text.begin(), std::ranges::find_if(text, IsControl)});
    return std::ranges::count(Fillers, ToLower(tidy)) == 0 ? tidy : std::wstring();
}

}  // namespace kel
