// The scripting members of CSysInfo.
#include <exception>
#include <string>

#include "control/Members.h"
#include "control/SysInfo.h"
#include "diag/Log.h"
#include "platform/Library.h"
#include "run/LogStart.h"
#include "run/System.h"
#include "run/store/FixedGroups.h"
#include "run/store/XMLReport.h"
#include "service/AnalysisRequest.h"
#include "values/Text.h"

namespace kel {

HRESULT CSysInfo::Detect()
{
    return Guarded([] {
        // Every run logs in full, whatever level was set; support cases depend on it.
        SetLogLevel(99);
        Guarded(L"CSysInfo::Detect", [] { System::Instance().Detect(); });
    });
}

HRESULT CSysInfo::get_SysInfo(BSTR* report)
{
    static std::wstring text;
    return GuardedResult(L"CSysInfo::get_SysInfo", report, []() -> const std::wstring& {
        text.clear();
        try {
            System::Instance().Detect();
            XMLReport(System::Instance().Values()).GetReport(XMLReport::StandardOption, text);
        } catch (...) {
            ReportFailure(LogError, CaughtException);  // the script gets an empty text, not a missing one
        }
        return text;
    });
}

HRESULT CSysInfo::put_SysInfo(BSTR /*text*/)
{
    return S_OK;
}

HRESULT CSysInfo::get_System(BSTR /*filter*/, BSTR* report)
{
    if (report != nullptr)
        *report = nullptr;
    HRESULT result = S_OK;
    Guarded(L"CSysInfo::get_System",
            [this, report, &result] { result = static_cast<ISysInfo*>(this)->get_SysInfo(report); });
    return result;
}

HRESULT CSysInfo::get_Analysis(BSTR id, BSTR format, BSTR schema, BSTR* result)
{
    return GuardedResult(L"CSysInfo::get_Analysis", result, [&] {
        try {
            const std::wstring item = TextOf(id);
            const std::wstring messageFormat = TextOf(format);
            const std::wstring formatVersion = TextOf(schema);
            static_cast<ISysInfo*>(this)->Detect();
            AnalysisRequest request;
            request.SetItemID(item);
            request.SetMessageFormat(messageFormat);
            request.SetFormatVersion(formatVersion);
            request.Call();
            return request.GetResult();
        } catch (const std::exception& error) {
            ReportFailure(LogError, L"Caught exception: ", error.what());
            throw AlreadyLogged();
        }
    });
}

HRESULT CSysInfo::get_Value(BSTR id, BSTR* value)
{
    static std::wstring text;
    return GuardedResult(value, [this, id] {
        text.clear();
        const SystemValueID valueId{GroupID(TextOf(id))};
        SystemValues& values = System::Instance().Values();
        // A run may begin an exchange, whose state would take the place of the one that is asked for.
        if (valueId.Group().Number() != ExchangeStateGroup || !values.Exists(valueId))
            static_cast<ISysInfo*>(this)->Detect();
        text = values.GetValue(valueId).Text();
        return text;
    });
}

HRESULT CSysInfo::Configure(BSTR val)
{
    return Guarded(L"CSysInfo::Configure", [val] {
        const std::wstring text = TextOf(val);
        System::Instance().SetConfiguration(text);
        System::Instance().Values().AddValues(text);
    });
}

HRESULT CSysInfo::get_Logging(BSTR* level)
{
    return GuardedResult(level, [] { return std::to_wstring(Log::Instance().GetLevel()); });
}

HRESULT CSysInfo::put_Logging(BSTR level)
{
    return Guarded(
        L"CSysInfo::put_Logging",
        [level] {
            const int number = ToInteger(TextOf(level));
            WriteLog(LogTrace, L"Setting level to: ", number);
            SetLogLevel(number);
            // There may be no session yet, which would keep the module loaded, and the level with it.
            PinThisModule();
        },
        L"Caught exception in put_Logging");
}

HRESULT CSysInfo::get_ReferrerID(BSTR* text)
{
    return GuardedResult(text, [] { return System::Instance().ReferrerID(); });
}

HRESULT CSysInfo::put_ReferrerID(BSTR text)
{
    return Guarded(L"CSysInfo::put_ReferrerID", [text] { System::Instance().SetReferrerID(TextOf(text)); });
}

HRESULT CSysInfo::get_SessionID(BSTR* text)
{
    return GuardedResult(text, [] { return System::Instance().SessionID(); });
}

HRESULT CSysInfo::put_SessionID(BSTR text)
{
    return Guarded([text] { System::Instance().SetSessionID(TextOf(text)); });
}

HRESULT CSysInfo::get_UserID(BSTR* text)
{
    return GuardedResult(text, [] { return System::Instance().UserID(); });
}

HRESULT CSysInfo::put_UserID(BSTR text)
{
    return Guarded([text] { System::Instance().SetUserID(TextOf(text)); });
}

HRESULT CSysInfo::get_Debug(BSTR* text)
{
    return GuardedResult(text, [] { return std::wstring(System::Instance().IsDebug() ? L"1" : L"0"); });
}

HRESULT CSysInfo::put_Debug(BSTR text)
{
    return Guarded([text] { System::Instance().SetDebug(TextOf(text)); });
}

HRESULT CSysInfo::get_Version(BSTR* version)
{
    // Takes no turn: a text that never changes can be read during another apartment's run.
    if (version != nullptr)
        *version = nullptr;
    try {
        return ReturnText(System::Version(), version);
    } catch (...) {
        return E_OUTOFMEMORY;
    }
}

}  // namespace kel
