#include "probes/Variant.h"

#include <comdef.h>
#include <comutil.h>

namespace kel {

namespace {

_variant_t Convert(const VARIANT& value, VARTYPE type)
{
    _variant_t converted(value);
    _com_util::CheckError(VariantChangeType(&converted, &converted, 0, type));
    return converted;
}

}  // namespace

std::wstring VariantText(const VARIANT& value)
{
    const _variant_t text = Convert(value, VT_BSTR);
    return text.bstrVal != nullptr ? std::wstring(text.bstrVal, SysStringLen(text.bstrVal)) : std::wstring();
}

std::uint32_t VariantUnsigned(const VARIANT& value)
{
    return Convert(value, VT_UI4).ulVal;
}

std::int32_t VariantSigned(const VARIANT& value)
{
    return Convert(value, VT_I4).lVal;
}

std::wstring ShowVariant(const VARIANT& value)
{
    try {
        return VariantText(value);
    } catch (const _com_error&) {
        return {};
    }
}

}  // namespace kel
