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

/// Prepares a variant to ask a bag for text. Bags convert to the type that is passed in, and some return
/// nothing for VT_EMPTY.
void AskForText(VARIANT& variant)
{
    variant.vt = VT_BSTR;
    variant.bstrVal = nullptr;
}

/// Reads a key as text.
/// @param variant asks for text, before and after the call: the bag's value is moved out of it
/// @return a string, or empty when the bag gave none
_variant_t ReadText(IPropertyBag& bag, const wchar_t* key, VARIANT& variant)
{
    const HRESULT read = bag.Read(key, &variant, nullptr);
    _variant_t given(variant, false);
    AskForText(variant);
    if (FAILED(read) || given.vt != VT_BSTR)
        given.Clear();
    return given;
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
        AskForText(variant);
        ReadText(*bag, LoggingKey, variant);  // read and ignored: a page's parameter must not turn the log on
        for (const auto& [key, put] : Puts) {
            const _variant_t text = ReadText(*bag, key, variant);
            if (text.vt == VT_BSTR)
                (this->*put)(text.bstrVal);
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
        // No session id: all visitors of a page that a design tool saves would share it.
        const std::pair<const wchar_t*, std::wstring> texts[] = {
            {ReferrerKey, system.ReferrerID()},
            {UserKey, system.UserID()},
            {DebugKey, system.IsDebug() ? L"1" : L""},
        };
        HRESULT worst = S_OK;
        for (const auto& [key, text] : texts) {
            const HRESULT written = text.empty() ? S_OK : WriteText(*bag, key, text);
            if (FAILED(written))
                worst = written;
        }
        result = worst;
    });
    return result;
}

}  // namespace kel
