#include "values/Name.h"

#include <comdef.h>

#include <string_view>

#include "values/Clone.h"

namespace kel {

Name::Name() : Name(L"") {}

Name::Name(const wchar_t* newText) : text(MakeText(newText)) {}

Name::Name(const std::wstring& newText) : Name(newText.c_str()) {}

Name::Name(const SharedText& newText) : text(newText) {}

Name& Name::operator=(const wchar_t* newText)
{
    text = MakeText(newText);
    return *this;
}

bool Name::HasValue() const
{
    return *ToString() != L'\0';
}

bool Name::operator==(const Name& other) const
{
    const wchar_t* otherText = other.text;
    if (otherText == nullptr)
        _com_issue_error(E_FAIL);
    return std::wstring_view(ToString()) == otherText;
}

const wchar_t* Name::ToString() const
{
    return Buffer(text);
}

Name* Name::Clone() const
{
    return CloneOf(*this);
}

}  // namespace kel
