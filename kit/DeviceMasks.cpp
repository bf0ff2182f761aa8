#include "kit/DeviceMasks.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "service/Utf8.h"
#include "values/Text.h"

namespace kel::kit {

namespace {

constexpr std::size_t AddressDigits = 12;

bool IsHexDigit(wchar_t character)
{
    return (character >= L'0' && character <= L'9') || (character >= L'A' && character <= L'F');
}

std::wstring Padded(std::size_t number, int width)
{
    std::array<wchar_t, 24> text = {};
    std::swprintf(text.data(), text.size(), L"%0*zu", width, number);
    return text.data();
}

/// The ids of Bluetooth devices hold their addresses.
std::wstring WithoutAddresses(const std::wstring& text, std::size_t number)
{
    std::wstring masked;
    for (std::size_t place = 0; place < text.size();) {
        std::size_t end = place;
        while (end < text.size() && IsHexDigit(text[end]))
            ++end;
        if (end - place >= AddressDigits)
            masked += Padded(number, AddressDigits);
        else
            masked += text.substr(place, std::max<std::size_t>(end - place, 1));
        place = std::max(end, place + 1);
    }
    return masked;
}

}  // namespace

void DeviceMasks::Learn(std::vector<std::wstring> instances)
{
    for (std::wstring& id : instances)
        id = ToUpper(id);
    std::ranges::sort(instances);
    for (const std::wstring& id : instances) {
        if (id.empty() || known.contains(id))
            continue;
        const std::size_t number = known.size() + 1;
        const std::size_t bus = id.find(L'\\');
        const std::size_t model = bus == std::wstring::npos ? bus : id.find(L'\\', bus + 1);
        known[id] = WithoutAddresses(id.substr(0, model), number) + L"\\" + Padded(number, 4);
    }
}

std::string DeviceMasks::Instance(const std::wstring& id)
{
    Learn({id});
    return id.empty() ? std::string() : ToUtf8(known[ToUpper(id)]);
}

std::string DeviceMasks::Text(const std::wstring& text)
{
    std::string field = ToUtf8(masker.Mask(text));
    std::erase_if(field, [](char c) { return c == '|' || (c >= 0 && c < ' '); });
    return field;
}

std::string DeviceMasks::Version(const std::wstring& text)
{
    return text.find_first_not_of(L"0123456789.") == std::wstring::npos ? ToUtf8(text) : Text(text);
}

}  // namespace kel::kit
