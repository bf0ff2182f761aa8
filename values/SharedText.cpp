#include "values/SharedText.h"

namespace kel {

SharedText MakeText(const wchar_t* text)
{
    return {text != nullptr ? text : L""};
}

const wchar_t* Buffer(const SharedText& text)
{
    const wchar_t* buffer = text;
    return buffer != nullptr ? buffer : L"";
}

}  // namespace kel
