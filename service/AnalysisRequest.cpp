#include "service/AnalysisRequest.h"

#include "run/store/Session.h"
#include "run/store/XMLReport.h"
#include "service/PathText.h"

namespace kel {

AnalysisRequest::AnalysisRequest()
    : WebService(
          L"POST", L"/service/Analysis/" + PathText(Session::Current().ReferrerID()),
          L"<System><SessionID>^session_id</SessionID><ItemID>^item_id</ItemID><UserID>^user_id</UserID>"
          L"<Format>^message_format</Format><Schema>^format_version</Schema></System>")
{
    Session& session = Session::Current();
    SetPlaceholder(L"^session_id", session.SessionID());
    SetPlaceholder(L"^user_id", session.UserID());
    // A template may have a place for the report; the present one does not.
    std::wstring report;
    XMLReport(session.Values()).GetReport(XMLReport::StandardOption, report);
    SetPlaceholder(L"^sys_info", report);
}

}  // namespace kel
