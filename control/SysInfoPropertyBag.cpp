// The property bag of CSysInfo: the parameters of a page's object tag.
#include <comutil.h>

#include <utility>

#include "control/Members.h"
#include "control/SysInfo.h"
#include "run/System.h"

namespace kel {

namespace {

constexpr const wchar_t* LoggingKey = L"LOGGING";
constexpr const wchar_t* SessionKey = L"SESSION_ID";
constexpr const wchar_t* ReferrerKey = L"REFERRER_ID";
constexpr const wchar_t* UserKey = L"USER_ID";
constexpr const wchar_t* DebugKey = L"DEBUG";

/// Reads a key into the variant.
/// @return whether it holds a string now; nothing is converted
bool ReadText(IPropertyBag& bag, const wchar_t* key, _variant_t& variant)
{
    variant.Clear();
    return SUCCEEDED(bag.Read(key, &variant, nullptr)) && variant.vt == VT_BSTR;
}

HRESULT WriteText(IPropertyBag& bag, const wchar_t* key, const std::wstring& text)
{
    _variant_t variant(text.c_str());
    return bag.Write(key, &variant);
}

}  // namespace

HRESULT CSysInfo::GetClassID(CLSID* classId)
{
    if (classId == nullptr)
        return E_POINTER;
    *classId = CLSID_SysInfo;
    return S_OK;
}

HRESULT CSysInfo::InitNew()
{
    return S_OK;
}

HRESULT CSysInfo::Load(IPropertyBag* bag, IErrorLog* /*errorLog*/)
{
    if (bag == nullptr)
        return S_OK;
    return Guarded([this, bag] {
        using Put = HRESULT (STDMETHODCALLTYPE CSysInfo::*)(BSTR);
        constexpr std::pair<const wchar_t*, Put> Puts[] = {
            {SessionKey, &CSysInfo::put_SessionID},
            {ReferrerKey, &CSysInfo::put_ReferrerID},
            {UserKey, &CSysInfo::put_UserID},
            {DebugKey, &CSysInfo::put_Debug},
        };
        _variant_t variant;
        ReadText(*bag, LoggingKey, variant);  // read and ignored: a page's parameter must not turn the log on
        for (const auto& [key, put] : Puts) {
            if (ReadText(*bag, key, variant))
                (this->*put)(variant.bstrVal);
        }
    });
}

HRESULT CSysInfo::Save(IPropertyBag* bag, BOOL /*clearDirty*/, BOOL /*saveAll*/)
{
    if (bag == nullptr)
        return E_POINTER;
    HRESULT result = E_OUTOFMEMORY;  // unless all is written
    Guarded([bag, &result] {
        const System& system = System::Instance();
        const std::pair<const wchar_t*, std::wstring> texts[] = {
            {SessionKey, system.SessionID()},
            {ReferrerKey, system.ReferrerID()},
            {UserKey, system.UserID()},
            {DebugKey, system.IsDebug() ? L"1" : L"0"},
        };
        HRESULT worst = S_OK;
        for (const auto& [key, text] : texts) {
            const HRESULT written = WriteText(*bag, key, text);
            if (FAILED(written))
                worst = written;
        }
        result = worst;
    });
    return result;
}

}  // namespace kel
