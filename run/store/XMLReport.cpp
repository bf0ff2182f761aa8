#include "run/store/XMLReport.h"

#include "diag/Log.h"
#include "diag/LogScope.h"
#include "run/store/FixedGroups.h"
#include "run/store/Session.h"
#include "values/Text.h"

namespace kel {

namespace {

bool IsWritten(const GroupID& group)
{
    if (group.Number() == ExchangeStateGroup)
        return false;
    return Session::Current().IsWanted(group) || IsInEveryReport(group.Number());
}

void AppendGroup(std::wstring& report, const SystemValue& value)
{
    const SystemValueID& id = value.ID();
    report.append(L"<group index=\"").append(std::to_wstring(id.Index()));
    report.append(L"\" id=\"").append(id.Group().Text()).append(L"\">");
    try {
        report.append(L"<value>" + EscapeMarkup(value.Text()) + L"</value>");
    } catch (...) {
        // A value without a text form leaves its group empty; the others still go out.
    }
    report.append(L"</group>");
}

}  // namespace

void XMLReport::GetReport(int /*option*/, std::wstring& report) const
{
    const LogScope trace(L"kel::XMLReport::GetReport");
    std::wstring text = L"<groups>";
    for (const SystemValue& value : values) {
        if (IsWritten(value.ID().Group()))
            AppendGroup(text, value);
    }
    // The log's text was once part of the report. It is still fetched, but not written.
    [[maybe_unused]] const std::wstring log = Log::Instance().GetText();
    text.append(L"</groups>  ");
    report = std::move(text);
}

}  // namespace kel
