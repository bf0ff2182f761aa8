#include "values/Text.h"

#include <algorithm>
#include <cwchar>
#include <cwctype>
#include <utility>

namespace kel {

namespace {

std::wstring Transform(std::wstring text, std::wint_t (*convert)(std::wint_t))
{
    std::ranges::transform(text, text.begin(),
                           [convert](wchar_t c) { return static_cast<wchar_t>(convert(c)); });
    return text;
}

bool IsSpace(wchar_t character)
{
    return std::iswspace(character) != 0;
}

}  // namespace

std::vector<std::wstring_view> Split(std::wstring_view text, wchar_t separator)
{
    std::vector<std::wstring_view> parts;
    for (;;) {
        const std::size_t end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end == std::wstring_view::npos)
            return parts;
        text.remove_prefix(end + 1);
    }
}

int ToInteger(const std::wstring& text)
{
    return static_cast<int>(std::wcstol(text.c_str(), nullptr, 10));
}

unsigned ToUnsigned(const std::wstring& text)
{
    return static_cast<unsigned>(std::wcstoul(text.c_str(), nullptr, 10));
}

std::wstring ToUpper(std::wstring text)
{
    return Transform(std::move(text), &std::towupper);
}

std::wstring ToLower(std::wstring text)
{
    return Transform(std::move(text), &std::towlower);
}

std::wstring Trim(const std::wstring& text)
{
    const auto end = std::find_if_not(text.rbegin(), text.rend(), IsSpace).base();
    const auto start = std::find_if_not(text.begin(), end, IsSpace);
    return {start, end};
}

std::wstring CollapseBlanks(const std::wstring& text)
{
    std::wstring tidy = Trim(text);
    for (std::size_t pair = tidy.find(L"  "); pair != std::wstring::npos; pair = tidy.find(L"  ", pair))
        tidy.erase(pair, 1);
    return tidy;
}

void ReplaceAll(std::wstring& text, std::wstring_view what, std::wstring_view with)
{
    std::size_t found = text.find(what);
    if (found == std::wstring::npos)
        return;
    std::wstring replaced;
    std::size_t copied = 0;
    for (; found != std::wstring::npos; found = text.find(what, copied)) {
        replaced.append(text, copied, found - copied).append(with);
        copied = found + what.size();
    }
    text = std::move(replaced.append(text, copied));
}

std::wstring EscapeMarkup(std::wstring text)
{
    ReplaceAll(text, L"&", L"&amp;");
    ReplaceAll(text, L"<", L"&lt;");
    ReplaceAll(text, L">", L"&gt;");
    return text;
}

void RemoveCharacters(std::wstring& text, std::wstring_view characters)
{
    std::erase_if(text, [characters](wchar_t c) { return characters.find(c) != std::wstring_view::npos; });
}

}  // namespace kel
