#include "values/Exists.h"

#include <string>

#include "values/Clone.h"

namespace kel {

static_assert(sizeof(bool) == 1, "the flag is one byte");

Exists& Exists::operator=(bool flag)
{
    value = flag;
    return *this;
}

const wchar_t* Exists::ToString() const
{
    static std::wstring text;
    text = value ? L"Yes" : L"No";
    return text.c_str();
}

Exists* Exists::Clone() const
{
    return CloneOf(*this);
}

}  // namespace kel
