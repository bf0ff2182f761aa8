#include "service/SystemInformationRequest.h"

#include "run/store/Session.h"
#include "run/store/XMLReport.h"
#include "service/PathText.h"
#include "values/Text.h"

namespace kel {

namespace {

std::wstring EscapedReport()
{
    std::wstring report;
    XMLReport(Session::Current().Values()).GetReport(XMLReport::StandardOption, report);
    return EscapeMarkup(report);
}

}  // namespace

SystemInformationRequest::SystemInformationRequest()
    : WebService(L"POST",
                 L"/SystemInformation/?refid=" + PathText(Session::Current().ReferrerID()) + L"&sessid=" +
                     PathText(Session::Current().SessionID()),
                 L"<SystemInformation><Data>^sys_info</Data></SystemInformation>")
{
    SetPlaceholder(L"^sys_info", EscapedReport());
}

}  // namespace kel
