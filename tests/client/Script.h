#pragma once

#include <oaidl.h>

#include <comutil.h>

namespace kel::test {

/// Reads a property by its name, as a script does, or sets it to a value.
inline HRESULT Call(IDispatch* object, const wchar_t* name, _variant_t& result,
                    const _variant_t* set = nullptr)
{
    _bstr_t text(name);
    wchar_t* names = text;
    DISPID id = 0, put = DISPID_PROPERTYPUT;
    const HRESULT found = object->GetIDsOfNames(IID_NULL, &names, 1, 0, &id);
    DISPPARAMS arguments = {const_cast<_variant_t*>(set), &put, set != nullptr, set != nullptr};
    return FAILED(found) ? found
                         : object->Invoke(id, IID_NULL, 0, set ? DISPATCH_PROPERTYPUT : DISPATCH_PROPERTYGET,
                                          &arguments, set ? nullptr : &result, nullptr, nullptr);
}

}  // namespace kel::test
