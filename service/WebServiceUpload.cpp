#include "service/WebServiceUpload.h"

#include <utility>

namespace kel {

WebServiceUpload::WebServiceUpload(std::wstring report)
    : WebService(L"POST", std::wstring(L"/Data/Service.svc/upload?apikey=") + ServiceApiKey,
                 std::move(report))
{
}

}  // namespace kel
