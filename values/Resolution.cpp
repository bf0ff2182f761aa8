#include "values/Resolution.h"

#include <algorithm>
#include <string_view>

#include "values/Clone.h"

namespace kel {

namespace {

constexpr std::uint32_t MaxEdge = 65535;
constexpr std::wstring_view Blanks = L" \t";

/// Takes a number from the start of a text; 0 when there is none, or one that is too large.
std::uint32_t TakeDots(std::wstring_view& rest)
{
    std::uint32_t number = 0;
    while (!rest.empty() && rest.front() >= L'0' && rest.front() <= L'9') {
        number = std::min(number * 10 + static_cast<std::uint32_t>(rest.front() - L'0'), MaxEdge + 1);
        rest.remove_prefix(1);
    }
    return number <= MaxEdge ? number : 0;
}

void SkipBlanks(std::wstring_view& rest)
{
    rest.remove_prefix(std::min(rest.find_first_not_of(Blanks), rest.size()));
}

}  // namespace

Resolution::Resolution(std::uint32_t newWidth, std::uint32_t newHeight)
{
    Set(newWidth, newHeight);
}

Resolution::Resolution(const std::wstring& newText)
{
    Initialize(newText.c_str());
}

bool Resolution::Set(std::uint32_t newWidth, std::uint32_t newHeight)
{
    *this = Resolution();
    if (newWidth == 0 || newHeight == 0 || std::max(newWidth, newHeight) > MaxEdge)
        return false;
    text = MakeText((std::to_wstring(newWidth) + L"x" + std::to_wstring(newHeight)).c_str());
    width = newWidth;
    height = newHeight;
    return true;
}

bool Resolution::Initialize(const wchar_t* newText)
{
    std::wstring_view rest = newText != nullptr ? newText : L"";
    SkipBlanks(rest);
    const std::uint32_t first = TakeDots(rest);
    SkipBlanks(rest);
    if (rest.empty() || std::wstring_view(L"xX*").find(rest.front()) == std::wstring_view::npos)
        return Set(0, 0);
    rest.remove_prefix(1);
    SkipBlanks(rest);
    return Set(first, TakeDots(rest));
}

bool Resolution::Covers(const Resolution& required) const
{
    return HasValue() && required.HasValue() &&
           std::max(width, height) >= std::max(required.width, required.height) &&
           std::min(width, height) >= std::min(required.width, required.height);
}

const wchar_t* Resolution::ToString() const
{
    return Buffer(text);
}

Resolution* Resolution::Clone() const
{
    return CloneOf(*this);
}

}  // namespace kel
