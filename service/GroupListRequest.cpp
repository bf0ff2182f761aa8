#include "service/GroupListRequest.h"

#include "run/store/Session.h"
#include "service/PathText.h"

namespace kel {

GroupListRequest::GroupListRequest()
    : WebService(L"GET",
                 L"/Data/Service.svc/Group/list?refid=" + PathText(Session::Current().ReferrerID()) +
                     L"&apikey=" + ServiceApiKey,
                 L"")
{
}

}  // namespace kel
