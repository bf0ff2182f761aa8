#include "values/Version.h"

#include <algorithm>
#include <boost/lexical_cast.hpp>
#include <string>
#include <string_view>

#include "diag/Log.h"
#include "values/Clone.h"

namespace kel {

namespace {

constexpr const wchar_t* Separators = L".,- _";
constexpr int FieldCount = 4;
constexpr int FieldBits = 16;

/// Takes the next token off the front of a text; empty when there is none.
std::wstring_view TakeToken(std::wstring_view& rest)
{
    rest.remove_prefix(std::min(rest.find_first_not_of(Separators), rest.size()));
    const std::wstring_view token = rest.substr(0, rest.find_first_of(Separators));
    rest.remove_prefix(token.size());
    return token;
}

}  // namespace

Version::Version() : Version(L"0.0") {}

Version::Version(const wchar_t* newText) : text(MakeText(newText)) {}

Version::Version(const std::wstring& newText) : Version(newText.c_str()) {}

Version::Version(std::int64_t number) : Version(std::to_wstring(number)) {}

Version& Version::operator=(const wchar_t* newText)
{
    Set(newText);
    return *this;
}

Version& Version::operator=(const std::wstring& newText)
{
    Set(newText);
    return *this;
}

bool Version::Set(const wchar_t* newText)
{
    text = MakeText(newText);
    return true;
}

bool Version::Set(const std::wstring& newText)
{
    return Set(newText.c_str());
}

std::uint64_t Version::Quantity() const
{
    std::uint64_t quantity = 0;
    try {
        std::wstring_view rest = ToString();
        const wchar_t last = rest.empty() ? L'\0' : rest.back();
        const bool hasLetter = last >= L'A' && last <= L'Z';
        if (hasLetter)
            rest.remove_suffix(1);

        bool missing = false;
        for (int field = 1; field <= FieldCount; ++field) {
            const std::wstring_view token = missing ? std::wstring_view() : TakeToken(rest);
            missing = token.empty();
            if (!missing)
                quantity |= boost::lexical_cast<std::uint64_t>(token.data(), token.size());
            if (field < FieldCount)
                quantity <<= FieldBits;
        }
        if (hasLetter)
            quantity += static_cast<std::uint64_t>(last);
    } catch (...) {
        ReportFailure(LogError, L"Error in Version::Quantity.");
    }
    return quantity;
}

const wchar_t* Version::ToString() const
{
    return Buffer(text);
}

Version* Version::Clone() const
{
    return CloneOf(*this);
}

}  // namespace kel
